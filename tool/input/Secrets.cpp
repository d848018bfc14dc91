#include "tool/input/Secrets.h"

#include <utility>

#include "RadiusPacketParser/RadiusPacketConstants.h"
#include "RadiusPacketParser/RadiusPktCommon.h"

namespace RadiusPacketTool {

using RadiusPacketParser::RadiusCode;
using Verda::U8;
using Zonet::IpGenAddr;

namespace {

bool goesToNas(U8 request) {
  return request == RadiusCode::DISCONNECT_REQUEST || request == RadiusCode::COA_REQUEST;
}

bool comesFromNas(U8 response) {
  return RadiusPktParserBase::canAnswer(response, RadiusCode::DISCONNECT_REQUEST) ||
         RadiusPktParserBase::canAnswer(response, RadiusCode::COA_REQUEST);
}

bool isSentByClient(U8 code) {
  return RadiusPktParserBase::isRequest(code) ? !goesToNas(code) : comesFromNas(code);
}

}  // namespace

const IpGenAddr& clientOf(const Datagram& datagram, std::optional<U8> code) {
  const bool isSender = code.has_value() && isSentByClient(*code);
  return isSender ? datagram.from.address : datagram.to.address;
}

Secrets::Secrets(std::unique_ptr<const Secret> forAll, std::vector<ClientSecret> forClients)
    : forAll_(std::move(forAll)), forClients_(std::move(forClients)) {
  for (const ClientSecret& entry : forClients_) {
    const U8 length = entry.clients.prefixLength();
    byNetwork_.emplace(networkOf(entry.clients.address(), length), entry.secret.get());
    lengths_.insert(length);
  }
}

const Secret* Secrets::of(const std::optional<Datagram>& datagram, std::optional<U8> code) const {
  if (!datagram.has_value() || forClients_.empty()) {
    return forAll_.get();
  }
  const IpGenAddr& client = clientOf(*datagram, code);
  if (const Secret* secret = ofAddress(client)) {
    return secret;
  }
  const bool isSender = &client == &datagram->from.address;
  const Secret* secret = ofAddress(isSender ? datagram->to.address : datagram->from.address);
  return secret != nullptr ? secret : forAll_.get();
}

std::vector<KnownSecret> Secrets::all() const {
  std::vector<KnownSecret> known;
  for (const ClientSecret& entry : forClients_) {
    known.push_back({.secret = entry.secret.get(), .clients = entry.clients, .line = entry.line});
  }
  if (forAll_ != nullptr) {
    known.push_back({.secret = forAll_.get(), .clients = std::nullopt, .line = 0});
  }
  return known;
}

const Secret* Secrets::ofAddress(const IpGenAddr& address) const {
  for (const U8 length : lengths_) {
    const auto found = byNetwork_.find(networkOf(address, length));
    if (found != byNetwork_.end()) {
      return found->second;
    }
  }
  return nullptr;
}

}  // namespace RadiusPacketTool
