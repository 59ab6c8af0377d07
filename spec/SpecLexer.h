// The spec lexer's interface to the parser and to the file commands.
//
// The lexer and the parser keep process-wide state and are not re-entrant:
// one spec file (with its includes) is read at a time.  readSpecFile
// (SpecReader.h) resets everything before each read.
#ifndef TAMBLIN_SPEC_SPECLEXER_H
#define TAMBLIN_SPEC_SPECLEXER_H

#include <string>

class Reporter;

/// The longest token the lexer accepts; a longer one ends the program.
constexpr int kSpecMaxToken = 1000;
/// How deep includes may nest below the file being read.
constexpr int kSpecMaxIncludeDepth = 64;

/// Replaces environment references ($NAME, ${NAME}) in text by their
/// values, repeatedly, so that values holding references are expanded too.
/// A backslash protects the character after it (both stay).  References to
/// unset names stay as written.
void envsub(std::string& text);

/// A new malloc'ed string: first, then sep if first is not empty, then
/// second.  Null strings count as empty.
char* BuildString(const char* first, const char* sep, const char* second);

/// Makes the file name (after environment substitution) the current input.
/// An include that is not readable as given is looked for beside the file
/// that includes it.  Returns 0, or -1 after logging why not.
int pushinput(const char* name);
/// Leaves the current file; returns 0 when an including file was resumed.
int popinput();

/// Starts a read: messages go to reporter and name the outermost file as
/// fileName until it is entered.  Clears every trace of an earlier read.
void specLexerBegin(Reporter* reporter, const std::string& fileName);
/// Ends a read, leaving every file still open.
void specLexerEnd();
/// The file being read (an include while one is open), as messages name it.
const std::string& specLexerFile();
/// Errors reported and includes refused since specLexerBegin.
int specLexerErrors();
int specLexerIncludeFailures();

/// The current line of the current file.
extern int lineno;
/// 1: the lexer and parser trace what they read on standard output.
extern int specDebug;

/// Next token for the parser (its value in speclval).
int speclex();
/// Reports a syntax or lexical error with file, line and the last token.
void specerror(const char* message);

#endif
