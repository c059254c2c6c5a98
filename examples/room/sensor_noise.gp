# The pictures of sensor_noise.tavro.
name = 'sensor_noise'
story = 'the sensor adds noise of at most 0.02, nothing fails'
events = ''
labels = ''
load 'pictures.gp'
