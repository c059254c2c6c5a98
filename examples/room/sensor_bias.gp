# The pictures of sensor_bias.tavro.
name = 'sensor_bias'
story = 'the sensor shows 0.5 too much from 50 on'
events = '50'
labels = 'bias'
load 'pictures.gp'
