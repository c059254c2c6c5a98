# The pictures of the run with multi of simulate.tavro.
name = 'simulate_multi'
day = 'healthy'
display = 'simulate'
story = 'every way that the room can go, without a measure'
events = '22'
labels = '"heater off"'
load 'pictures.gp'
