# The pictures of stuck_on.tavro.
name = 'stuck_on'
story = 'the thermostat sticks on at 22, so the room warms to 23'
events = '22'
labels = '"sticks on"'
load 'pictures.gp'
