#include "util/Outcome.h"

#include <utility>

Outcome Outcome::error(std::string message, int code) {
  Outcome status;
  status._failure.reset(new Failure{std::move(message), code});
  return status;
}

Outcome::Outcome(const Outcome& other)
    : _failure(other._failure ? new Failure(*other._failure) : nullptr) {}

Outcome& Outcome::operator=(const Outcome& other) {
  if (this != &other) _failure.reset(other._failure ? new Failure(*other._failure) : nullptr);
  return *this;
}

const std::string& Outcome::message() const {
  static const std::string none;
  return _failure ? _failure->message : none;
}
