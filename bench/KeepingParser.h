#pragma once

#include <utility>
#include <vector>

#include "RadiusPacketParser/RadiusPktParser.h"

namespace Bench {

/// What an agent does with a packet: it keeps every attribute with its value, as its own.
class KeepingSink : public RadiusPktParserBase::PktInfoParser {
 public:
  using Kept = std::pair<RadiusPktParserBase::Attribute, RadiusPktParserBase::AttrValue>;

  /// `kept` belongs to the agent, which empties it for each packet.
  explicit KeepingSink(std::vector<Kept>& kept) : kept_(kept) { kept_.clear(); }

  std::vector<Kept>& kept() { return kept_; }

 private:
  std::vector<Kept>& kept_;
};

class KeepingParser : public RadiusPktParserBase::RadiusPktParser {
 public:
  using RadiusPktParser::RadiusPktParser;

  void doProcessAttribute(const RadiusPktParserBase::Attribute& attr,
                          const RadiusPktParserBase::AttrValue& attrValue,
                          RadiusPktParserBase::AttrInfo /*attrInfo*/,
                          const Verda::Ptr<RadiusPktParserBase::PktInfoParser>& sink) override {
    static_cast<KeepingSink&>(*sink).kept().emplace_back(attr, attrValue);
  }
};

}  // namespace Bench
