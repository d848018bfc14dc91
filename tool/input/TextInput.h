#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "tool/input/HexInput.h"
#include "tool/input/InputFormat.h"
#include "tool/input/PacketStart.h"

namespace RadiusPacketTool {

/// Reads packets from a text in any of the forms that people paste, which comes in pieces. A byte
/// order mark in front of it is dropped.
///
/// When the form is to be found out, it is the first that fits: a hex dump, plain hex, literals of
/// C, base64. All but plain hex are kept until the end, so they are looked for only in text of
/// bounded size.
class TextReader {
 public:
  explicit TextReader(InputFormat format);

  /// Whether further text can change anything.
  bool wantsMore() const;

  void take(std::string_view piece);

  /// Why the text is no plain hex, if anybody wanted to know.
  const std::optional<BadHex>& whyNoHex() const { return hex_.fault(); }

  /// Ends the text and returns its packets; nothing when it is in none of the forms, or called
  /// binary. Throws `BadHex` for a fault in the form that it is in.
  std::optional<PacketList> finish();

 private:
  bool readsHex() const;
  void keep(std::string_view piece);
  std::optional<PacketList> formFoundOut();

  InputFormat format_;
  HexReader hex_;
  std::string start_;         ///< the first bytes, as long as they may be a byte order mark
  bool startIsRead_ = false;  ///< whether they are known to be one or none
  std::string kept_;
  bool isText_ = true;  ///< no control bytes but white space so far
  bool isKept_ = true;  ///< the whole text so far
};

}  // namespace RadiusPacketTool
