// Completion of command names, ready for the line reader and left out of use.
//
// Required: none of this is installed. The console runs with the reader's own completion, so that
// Tab completes the names of files, which are what a user of the commands has to type.
#pragma once

// Gives the line reader the program's name, under which its configuration file may address it.
void initialize_readline();

// The matches of a word; null leaves the word to the reader's own completion.
char** sn_completion(char const* text, int start, int end);

// The last command, in the order of the table, that begins with *text*; null when there is none. A
// call with *state* 0 walks the table from its start, any other goes on behind the last walk, which
// was to the table's end. The name is the table's own, not a copy.
char const* command_generator(char const* text, int state);
