# The pictures of healthy.tavro.
name = 'healthy'
story = 'nothing fails, the room swings between the thresholds'
events = ''
labels = ''
load 'pictures.gp'
