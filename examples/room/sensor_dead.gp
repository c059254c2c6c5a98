# The pictures of sensor_dead.tavro.
name = 'sensor_dead'
story = 'the sensor shows 0 from 50 on'
events = '50'
labels = 'dead'
load 'pictures.gp'
