# The pictures of stuck_off.tavro.
name = 'stuck_off'
story = 'the thermostat is stuck off from the start, so the room stays below 10'
events = '0'
labels = '"stuck off"'
load 'pictures.gp'
