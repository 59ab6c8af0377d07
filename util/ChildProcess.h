// ChildProcess: what a child process may take along from the program.
//
// Children (the build program, the help server, find) get standard input,
// output and error and nothing else: descriptors the program opened without
// close-on-exec, or inherited from whoever started it, would otherwise stay
// open in the child for its whole life (a pipe kept open keeps its reader
// from ever seeing end of file).
#ifndef TAMBLIN_UTIL_CHILDPROCESS_H
#define TAMBLIN_UTIL_CHILDPROCESS_H

/// Marks every descriptor above standard error close-on-exec.  Call it in
/// the child between fork and exec: it is async-signal-safe, and the
/// descriptors stay usable until exec (a pipe that reports exec failures,
/// for example).
void keepOnlyStandardDescriptors();

#endif
