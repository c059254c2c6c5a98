# The pictures of window_command.tavro.
name = 'window_command'
story = 'the window is commanded open at 30 and closed at 60'
events = '30 60'
labels = 'opened closed'
load 'pictures.gp'
