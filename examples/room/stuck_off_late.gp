# The pictures of stuck_off_late.tavro.
name = 'stuck_off_late'
story = 'the thermostat sticks off at 46, which is noticed late'
events = '46'
labels = '"sticks off"'
load 'pictures.gp'
