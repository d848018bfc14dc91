#pragma once

#include <cstddef>
#include <limits>
#include <span>
#include <string>
#include <utility>

#include "Verda/Types.h"

#include "tool/anatomy/Anatomy.h"

namespace RadiusPacketTool {

/// Puts an anatomy together, field by field, from front to end.
class FieldList {
 public:
  /// The parent of the outermost fields.
  static constexpr std::size_t packet = std::numeric_limits<std::size_t>::max();

  /// `bytes` must outlive the object.
  explicit FieldList(std::span<const Verda::U8> bytes) : bytes_(bytes) {}

  std::span<const Verda::U8> bytes() const { return bytes_; }

  /// Adds a field as the last part of `parent` and returns its index. It may reach behind the
  /// packet's end: it then has the bytes that there are.
  std::size_t add(std::size_t parent, std::size_t offset, std::size_t length,
                  const std::string& name, const std::string& meaning = {});

  Field& operator[](std::size_t index) { return anatomy_.fields[index]; }
  const Anatomy& anatomy() const { return anatomy_; }

  /// Says what is wrong with a field; of several faults the first counts.
  void refuse(std::size_t index, const FieldFault& fault);

  void authenticatorIs(std::size_t index) { anatomy_.authenticator = index; }
  void messageAuthenticatorIs(std::size_t index) { anatomy_.messageAuthenticator = index; }

  Anatomy anatomyDel() { return std::move(anatomy_); }

 private:
  std::span<const Verda::U8> bytes_;
  Anatomy anatomy_;
};

}  // namespace RadiusPacketTool
