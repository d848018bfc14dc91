#include "tests/support/Digests.h"

#include <algorithm>
#include <stdexcept>

#include <openssl/evp.h>

namespace TestSupport {

using Verda::U8;

namespace {

constexpr std::size_t digestLength = 16;
constexpr std::size_t hmacBlock = 64;

/// One block of the key, each byte mixed with `pad`.
ByteVector paddedKey(std::span<const U8> key, U8 pad) {
  ByteVector block = key.size() > hmacBlock ? md5(key) : ByteVector(key.begin(), key.end());
  block.resize(hmacBlock);
  std::ranges::transform(block, block.begin(),
                         [pad](U8 byte) { return static_cast<U8>(byte ^ pad); });
  return block;
}

/// The bytes at `begin`, a block of them or as many as there are.
ByteVector blockOf(std::span<const U8> bytes, std::size_t begin) {
  const std::span<const U8> block =
      bytes.subspan(begin, std::min(digestLength, bytes.size() - begin));
  return {block.begin(), block.end()};
}

ByteVector mixed(ByteVector block, const ByteVector& keystream) {
  std::ranges::transform(block, keystream, block.begin(),
                         [](U8 left, U8 right) { return static_cast<U8>(left ^ right); });
  return block;
}

}  // namespace

ByteVector bytesOf(const std::string& text) {
  return {text.begin(), text.end()};
}

ByteVector countingBytes(std::size_t count, U8 first) {
  ByteVector bytes;
  while (bytes.size() < count) {
    bytes.push_back(static_cast<U8>(first + bytes.size()));
  }
  return bytes;
}

ByteVector joined(std::initializer_list<std::span<const U8>> parts) {
  ByteVector whole;
  for (const std::span<const U8> part : parts) {
    whole.insert(whole.end(), part.begin(), part.end());
  }
  return whole;
}

ByteVector md5(std::span<const U8> data) {
  ByteVector digest(digestLength);
  unsigned int length = 0;
  if (EVP_Digest(data.data(), data.size(), digest.data(), &length, EVP_md5(), nullptr) != 1 ||
      length != digestLength) {
    throw std::runtime_error("no MD5");
  }
  return digest;
}

ByteVector hmacMd5(std::span<const U8> key, std::span<const U8> data) {
  const ByteVector inner = md5(joined({paddedKey(key, 0x36), data}));
  return md5(joined({paddedKey(key, 0x5c), inner}));
}

ByteVector hidden(std::span<const U8> plain, std::span<const U8> secret,
                  std::span<const U8> authenticator, std::span<const U8> salt) {
  ByteVector result;
  ByteVector keystream = md5(joined({secret, authenticator, salt}));
  for (std::size_t begin = 0; begin < plain.size(); begin += digestLength) {
    ByteVector block = mixed(blockOf(plain, begin), keystream);
    result.insert(result.end(), block.begin(), block.end());
    block.resize(digestLength);
    keystream = md5(joined({secret, block}));
  }
  return result;
}

ByteVector revealed(std::span<const U8> cipher, std::span<const U8> secret,
                    std::span<const U8> authenticator, std::span<const U8> salt) {
  ByteVector result;
  ByteVector keystream = md5(joined({secret, authenticator, salt}));
  for (std::size_t begin = 0; begin < cipher.size(); begin += digestLength) {
    ByteVector block = blockOf(cipher, begin);
    const ByteVector plain = mixed(block, keystream);
    result.insert(result.end(), plain.begin(), plain.end());
    block.resize(digestLength);
    keystream = md5(joined({secret, block}));
  }
  return result;
}

}  // namespace TestSupport
