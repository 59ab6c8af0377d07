// Outcome: the result of a core operation that can fail, as a value (in the
// manner of LevelDB's Status, which is what this class would be called if
// Xlib did not define Status as a macro for int: the interface layer, which
// includes Xlib, returns the same type).
//
// Either ok, or an error holding the message for the user (exactly the text
// the message log or the error dialog shows) and, where the failure came
// from the system, its error number.  An ok Outcome holds no storage, so
// returning one from a function called once a line costs nothing.
//
// A function that also produces a value keeps the value in its usual place
// (a member, a pointer or reference parameter) and returns an Outcome;
// there is no Result<T> beside it.
//
// The class is [[nodiscard]]: a caller that drops an Outcome does not compile,
// so a failure cannot be lost by forgetting to look.
#ifndef TAMBLIN_UTIL_OUTCOME_H
#define TAMBLIN_UTIL_OUTCOME_H

#include <memory>
#include <string>

class [[nodiscard]] Outcome {
 public:
  /// Ok.
  Outcome() = default;
  /// Ok; reads better than Outcome() in a return statement.
  static Outcome success() { return Outcome(); }
  /// A failure with the user's message and, when the system gave one, its
  /// error number (0 for none).  An empty message is still a failure.
  static Outcome error(std::string message, int code = 0);

  Outcome(const Outcome& other);
  Outcome& operator=(const Outcome& other);
  Outcome(Outcome&&) noexcept = default;
  Outcome& operator=(Outcome&&) noexcept = default;

  bool ok() const { return !_failure; }
  /// The message of a failure, "" when ok.
  const std::string& message() const;
  /// The error number of a failure, 0 when ok or when there is none.
  int code() const { return _failure ? _failure->code : 0; }

 private:
  struct Failure {
    std::string message;
    int code;
  };
  std::unique_ptr<const Failure> _failure;  // null when ok
};

#endif
