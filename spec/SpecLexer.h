// The spec lexer's interface to the parser and to the file commands.
//
// The lexer and the parser keep process-wide state and are not re-entrant:
// one spec text (with its includes) is read at a time.  readSpecFile and
// readSpecText (SpecReader.h) reset everything before each read.
#ifndef TAMBLIN_SPEC_SPECLEXER_H
#define TAMBLIN_SPEC_SPECLEXER_H

#include <cstddef>
#include <string>
#include <string_view>

class Reporter;
struct SpecReadReport;

/// The longest token the lexer accepts; a longer one ends the program.  A
/// word that environment substitution would make longer is left as written.
constexpr int kSpecMaxToken = 1000;
/// How deep includes may nest below the file being read.
constexpr int kSpecMaxIncludeDepth = 64;

/// What one read may cost at most, whatever the files hold: a small file
/// must not be able to make the program run or grow without end.
struct SpecReadLimits {
  /// Characters that environment substitution may produce in one read, all
  /// passes over all words together.  Past it, references stay as written.
  std::size_t maxExpansion = std::size_t(4) << 20;
  /// Messages logged in one read; the others are counted, and one line says
  /// how many there were.
  int maxMessages = 100;
  /// Bytes of all the files one read takes in, and how many files it enters.
  std::size_t maxBytes = std::size_t(64) << 20;
  int maxFiles = 1000;
};
/// The limits in force (tests lower them).
SpecReadLimits& specReadLimits();

enum class EnvsubResult {
  kDone,
  kTooLong,      // a result would be longer than kSpecMaxToken characters
  kOutOfBudget,  // the passes would produce more than *budget characters
};

/// Replaces environment references ($NAME, ${NAME}) in text by their
/// values, repeatedly (at most 20 passes), so that values holding
/// references are expanded too.  A backslash protects the character after
/// it (both stay).  References to unset names stay as written.  Unless the
/// result is kDone, text is left as it was.  budget, if given, is reduced
/// by the characters the passes produced.
EnvsubResult envsub(std::string& text, std::size_t* budget = nullptr);

/// A new malloc'ed string: first, then sep if first is not empty, then
/// second.  Null strings count as empty.
char* BuildString(const char* first, const char* sep, const char* second);
/// The same join in place, onto first: what the grammar uses, so that a
/// value growing by one word at a time costs time in proportion to its size.
void joinInto(std::string& first, const char* sep, std::string_view second);

/// Makes the file name (after environment substitution) the current input.
/// An include that is not readable as given is looked for beside the file
/// that includes it.  Returns 0, or -1 after logging why not.
int pushinput(const char* name);
/// Makes text, named name in messages, the current input.
int pushtext(const std::string& name, const std::string& text);
/// Leaves the current file; returns 0 when an including file was resumed.
int popinput();

/// Starts a read: messages go to reporter and name the outermost file as
/// fileName until it is entered.  Clears every trace of an earlier read.
/// Without directives, include and setenv are errors instead of actions.
void specLexerBegin(Reporter* reporter, const std::string& fileName, bool directives = true);
/// Ends a read, leaving every file still open; logs how many messages the
/// limit held back, if any.
void specLexerEnd();
/// Adds what the lexer met since specLexerBegin to report.
void specLexerFillReport(SpecReadReport* report);
/// The file being read (an include while one is open), as messages name it.
const std::string& specLexerFile();

/// The current line of the current file.
extern int lineno;
/// 1: the lexer and parser trace what they read on standard output.
extern int specDebug;

/// Next token for the parser (its value in speclval, its line in speclloc).
int speclex();
/// Reports a syntax error with file, line and the last token; the lexer then
/// ends the input, as the rest of the file is skipped.
void specerror(const char* message);

#endif
