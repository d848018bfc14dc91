#include "tool/dictionary/VendorBlock.h"

#include <vector>

#include <fmt/format.h>

#include "tool/dictionary/AttributeLine.h"
#include "tool/dictionary/KeywordWarning.h"
#include "tool/text/Suggestion.h"

namespace RadiusPacketTool {
void VendorBlock::read(const DictionaryWords& words, std::size_t line) {
  problems_.lineIs(line);
  const LineRule* rule = lineRuleFind(words.keyword());
  if (rule == nullptr || rule->kind == LineKind::include) {
    warnOfKeyword(words[0], problems_);
  } else if (rule->kind == LineKind::vendor) {
    readVendor(words);
  } else if (rule->kind == LineKind::beginVendor) {
    readBegin(words);
  } else if (rule->kind == LineKind::endVendor) {
    readEnd(words);
  } else if (rule->kind == LineKind::attribute) {
    readAttribute(words);
  }
}

void VendorBlock::finish() {
  if (!hasEnded_) {
    problems_.lineIs(openedAt_.line);
    problems_.error(openedAt_.column, hasBegun_ ? "no END-VENDOR ends this block"
                                                : "the block of this vendor is missing");
  }
}

void VendorBlock::readVendor(const DictionaryWords& words) {
  if (vendor_.has_value()) {
    problems_.error(words[0].column, "a second VENDOR: a file holds one vendor");
    startAnew();
  }
  vendor_ = readVendorLine(words, problems_);
  opensAt(words[0]);
  defineVendor(words[nameWord]);
}

void VendorBlock::startAnew() {
  const std::size_t line = problems_.line();
  finish();
  problems_.lineIs(line);
  vendor_.reset();
  hasBegun_ = false;
  beginAssumed_ = false;
  hasEnded_ = false;
}

void VendorBlock::readBegin(const DictionaryWords& words) {
  if (hasBegun_ && !beginAssumed_) {
    problems_.error(words[0].column, "a second BEGIN-VENDOR: a file holds one block");
    if (vendor_.has_value() && vendor_->name != words[nameWord].text) {
      startAnew();
    }
  }
  opensAt(words[0]);
  hasBegun_ = true;
  beginAssumed_ = false;
  hasEnded_ = false;
  problems_.checkCount(words, LineKind::beginVendor);
  if (!words.has(nameWord)) {
    return;
  }
  if (vendor_.has_value()) {
    checkName(words[nameWord]);
  }
  warnOfFormat(words[lineRuleOf(LineKind::beginVendor).leastWords], problems_);
  if (!vendor_.has_value()) {
    findVendor(words[nameWord]);
  }
}

void VendorBlock::findVendor(const DictionaryWord& word) {
  const auto found = reading_.vendorIds.find(std::string(word.text));
  if (found != reading_.vendorIds.end()) {
    problems_.warning(word.column, fmt::format("no VENDOR line in front: {} is number {}, as "
                                               "another file says",
                                               quotedWord(word.text), found->second));
    vendor_ = {.name = found->first, .id = found->second};
    defineVendor(word);
    return;
  }
  std::vector<std::string> names;
  for (const auto& [name, id] : reading_.vendorIds) {
    names.push_back(name);
  }
  problems_.warning(word.column,
                    fmt::format("no first line of any file declares the vendor {}: its "
                                "attributes are ignored",
                                quotedWord(word.text)),
                    likeliestMeant(word.text, names));
}

void VendorBlock::readEnd(const DictionaryWords& words) {
  if (hasEnded_) {
    problems_.error(words[0].column, "a second END-VENDOR");
    return;
  }
  if (!hasBegun_) {
    problems_.error(words[0].column, "END-VENDOR before BEGIN-VENDOR");
  } else if (problems_.checkCount(words, LineKind::endVendor)) {
    checkName(words[nameWord]);
  }
  hasEnded_ = true;
}

void VendorBlock::checkName(const DictionaryWord& word) {
  if (!vendor_.has_value()) {
    problems_.error(word.column, fmt::format("the vendor {} is not known", quotedWord(word.text)));
  } else if (vendor_->name != word.text) {
    problems_.error(word.column,
                    fmt::format("{} is not the vendor of this file", quotedWord(word.text)),
                    vendor_->name);
  }
}

void VendorBlock::readAttribute(const DictionaryWords& words) {
  if (hasEnded_) {
    problems_.error(words[0].column, "ATTRIBUTE behind END-VENDOR");
  } else if (!hasBegun_) {
    problems_.error(words[0].column, "ATTRIBUTE before BEGIN-VENDOR");
    hasBegun_ = true;
    beginAssumed_ = true;
    opensAt(words[0]);
  }
  const AttributeSpace space{.isKnown = vendor_.has_value(),
                             .vendorId = vendor_.has_value() ? vendor_->id : std::nullopt,
                             .isStandard = false};
  readAttributeLine(words, space, problems_, reading_.definitions);
}

void VendorBlock::defineVendor(const DictionaryWord& word) {
  if (!vendor_->id.has_value()) {
    return;
  }
  const std::string contradiction = reading_.definitions.add(
      *vendor_->id,
      {.name = vendor_->name, .place = {.file = problems_.path(), .line = problems_.line()}});
  if (!contradiction.empty()) {
    problems_.warning(word.column, contradiction);
  }
}

}  // namespace RadiusPacketTool
