# The pictures of the run without multi of simulate.tavro.
name = 'simulate_single'
day = 'healthy'
display = 'simulate'
story = 'one way alone, without a measure: the bounds drift away'
events = '22 47'
labels = '"heater off" "heater on"'
load 'pictures.gp'
