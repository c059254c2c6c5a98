// What the user was not given: the one place where it is told and counted.
//
// A loss is a result that could not be written, data that could not be read, a file or a command
// that was refused, or a run that did not come to its last step. Each is a message on the error
// stream; that there was one decides the status of a strict session.
#pragma once

// Tells a loss, in the words of printf, and counts it. Allocates nothing: memory may be what is
// short.
[[gnu::format(printf, 1, 2)]] void tellLoss(char const* format, ...);
// Counts a loss that is told elsewhere.
void countLoss();
// How many there have been in this session.
int losses();

// Says, once a message, that *path* could not be written, and why: an errno.
void tellUnwritten(char const* path, int error);
