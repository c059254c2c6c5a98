# The pictures of stuck_on_explained.tavro.
name = 'stuck_on_explained'
day = 'stuck_on'
story = 'the thermostat sticks on at 22; found at 27, and followed from then on'
events = '22 27'
labels = '"sticks on" found'
load 'pictures.gp'
