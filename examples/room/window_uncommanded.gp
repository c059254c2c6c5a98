# The pictures of window_uncommanded.tavro.
name = 'window_uncommanded'
day = 'window_command'
story = 'the same window, of which the program is told nothing'
events = '30 60'
labels = 'opened closed'
load 'pictures.gp'
