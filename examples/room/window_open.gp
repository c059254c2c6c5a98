# The pictures of window_open.tavro.
name = 'window_open'
story = 'the window opens at 70 without a command'
events = '70'
labels = 'opens'
load 'pictures.gp'
