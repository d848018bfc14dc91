#pragma once

#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <unistd.h>

namespace TestSupport {

/// Takes what the process writes to standard error while it lives.
class StandardErrorCapture {
 public:
  StandardErrorCapture() : file_(std::tmpfile(), &std::fclose), saved_(dup(STDERR_FILENO)) {
    if (file_ == nullptr || saved_ < 0 || dup2(fileno(file_.get()), STDERR_FILENO) < 0) {
      throw std::runtime_error("standard error cannot be captured");
    }
  }
  StandardErrorCapture(const StandardErrorCapture&) = delete;
  StandardErrorCapture& operator=(const StandardErrorCapture&) = delete;
  ~StandardErrorCapture() {
    dup2(saved_, STDERR_FILENO);
    close(saved_);
  }

  /// All that was written so far.
  std::string text() const {
    std::string text;
    std::rewind(file_.get());
    for (int c = std::fgetc(file_.get()); c != EOF; c = std::fgetc(file_.get())) {
      text += static_cast<char>(c);
    }
    return text;
  }

 private:
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> file_;
  int saved_;
};

}  // namespace TestSupport
