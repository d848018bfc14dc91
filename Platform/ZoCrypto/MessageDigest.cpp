// The low-level MD5 works in the caller's storage without the heap; the fetched digests of the
// library's newer interface need an allocated context for each message.
#define OPENSSL_SUPPRESS_DEPRECATED

#include "ZoCrypto/MessageDigest.h"

#include <new>

#include <openssl/md5.h>

#include "Verda/Assert.h"
#include "ZoCrypto/Cleanse.h"
#include "ZoCrypto/FaultSeam.h"

namespace ZoCrypto {
namespace {

static_assert(sizeof(MD5_CTX) <= MdContext::storageSize);
static_assert(alignof(MD5_CTX) <= 8);
static_assert(MD5_DIGEST_LENGTH == md5DigestLength);

constexpr MdMethod md5Method{"md5", md5DigestLength};

MD5_CTX* stateOf(MdContext& context) {
  return std::launder(reinterpret_cast<MD5_CTX*>(context.storage));
}

}  // namespace

const MdMethod* md_find(std::string_view name) {
  return name == md5Method.name ? &md5Method : nullptr;
}

void md_init(MdContext& context, const MdMethod* method) {
  VERDA_ASSERT(method != nullptr);
  context.method = method;
  MD5_Init(new (context.storage) MD5_CTX);
}

void md_update(MdContext& context, const void* data, std::size_t length) {
  MD5_Update(stateOf(context), data, length);
}

void md_final(MdContext& context, U8* digest, U32* digestLength) {
  const bool failed =
      FaultSeam::failsNow(Primitive::md5) || MD5_Final(digest, stateOf(context)) != 1;
  *digestLength = failed ? 0 : context.method->digestLength;
}

void md_cleanup(MdContext& context) {
  cleanse(context.storage);
}

}  // namespace ZoCrypto
