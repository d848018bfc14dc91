#pragma once

#include <initializer_list>
#include <span>
#include <string>
#include <vector>

#include "Verda/Types.h"

/// What the tests compute for themselves, so that the library is never measured by itself.
namespace TestSupport {

using ByteVector = std::vector<Verda::U8>;
using Sizes = std::vector<std::size_t>;

/// The bytes of a text.
ByteVector bytesOf(const std::string& text);

/// `count` bytes that count up from `first`.
ByteVector countingBytes(std::size_t count, Verda::U8 first = 0);

/// The parts, one behind the other.
ByteVector joined(std::initializer_list<std::span<const Verda::U8>> parts);

ByteVector md5(std::span<const Verda::U8> data);

/// HMAC-MD5 as RFC 2104 puts it together from MD5.
ByteVector hmacMd5(std::span<const Verda::U8> key, std::span<const Verda::U8> data);

/// Hides a value as RFC 2865 section 5.2 says, or, with two bytes of salt, RFC 2868 section 3.5. A
/// last block that is short is taken as filled up with zeros.
ByteVector hidden(std::span<const Verda::U8> plain, std::span<const Verda::U8> secret,
                  std::span<const Verda::U8> authenticator, std::span<const Verda::U8> salt = {});

/// Reveals what `hidden` hides.
ByteVector revealed(std::span<const Verda::U8> cipher, std::span<const Verda::U8> secret,
                    std::span<const Verda::U8> authenticator, std::span<const Verda::U8> salt = {});

}  // namespace TestSupport
