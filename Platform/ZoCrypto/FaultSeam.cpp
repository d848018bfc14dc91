#include "ZoCrypto/FaultSeam.h"

#include <mutex>

namespace ZoCrypto {
namespace {

std::mutex mutex;
Primitive failing = Primitive::md5;
Verda::U32 callsLeft = 0;

}  // namespace

std::atomic<bool> FaultSeam::armed_{false};

void FaultSeam::failIs(Primitive primitive, Verda::U32 callsBefore) {
  const std::lock_guard lock(mutex);
  failing = primitive;
  callsLeft = callsBefore;
  armed_.store(true);
}

void FaultSeam::failDel() {
  armed_.store(false);
}

bool FaultSeam::takes(Primitive primitive) {
  const std::lock_guard lock(mutex);
  if (!armed_.load() || primitive != failing) {
    return false;
  }
  if (callsLeft > 0) {
    --callsLeft;
    return false;
  }
  armed_.store(false);
  return true;
}

}  // namespace ZoCrypto
