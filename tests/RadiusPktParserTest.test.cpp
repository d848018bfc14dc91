#include "RadiusPacketParser/RadiusPktParserTest.h"

#include <algorithm>
#include <array>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "Tyl/TextReader.h"
#include "Verda/Exception.h"

#include "tests/support/CapturingSink.h"
#include "tests/support/PacketMaker.h"
#include "tests/support/TestDictionary.h"
#include "tests/support/ThrownText.h"
#include "tests/support/Walk.h"

namespace {

using namespace RadiusPktParserTest;
using RadiusPktParserBase::AttrInfo;
using RadiusPktParserBase::AttrValue;
using RadiusPktParserBase::ErrorMsg;
using RadiusPktParserBase::standardAttribute;
using TestSupport::ByteVector;
using TestSupport::CapturedRecord;
using TestSupport::CapturingSink;
using TestSupport::countingBytes;
using TestSupport::DictionaryMaker;
using TestSupport::PacketMaker;
using TestSupport::pktOf;
using TestSupport::Records;
using TestSupport::reqAuthFor;
using TestSupport::shippedDictionary;
using TestSupport::testSecret;
using TestSupport::thrownText;
using TestSupport::verdaBytes;
using Verda::U32;
using Verda::U8;
using Verdict = StatusServerErrorMsg;

// ---- StatusServerErrorMsg ----

struct VerdictRow {
  U8 number;
  const char* name;
  Verdict enumerator;
};

constexpr std::array verdictRows{
    VerdictRow{0, "success", Verdict::success},
    VerdictRow{1, "msgAuthNotPresent", Verdict::msgAuthNotPresent},
    VerdictRow{2, "invalidAttributePresent", Verdict::invalidAttributePresent},
};

TEST(StatusServerErrorMsgTable, ConvertsEachRowBothWays) {
  for (const VerdictRow& row : verdictRows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(static_cast<U8>(row.enumerator), row.number);
    EXPECT_EQ(stringValue(row.enumerator), row.name);
    EXPECT_EQ(StatusServerErrorMsgInstance(Verda::String(row.name)), row.enumerator);
    EXPECT_EQ(StatusServerErrorMsgInstance(U32{row.number}), row.enumerator);
    std::ostringstream printed;
    printed << row.enumerator;
    EXPECT_EQ(printed.str(), row.name);
    Tyl::TextReader text(row.name);
    auto read = static_cast<Verdict>(255);
    sequenceToValue(text, read);
    EXPECT_EQ(read, row.enumerator);
    EXPECT_TRUE(text.atEnd());
  }
}

TEST(StatusServerErrorMsgTable, HoldsTheseRowsInThisOrderAndNoOther) {
  const Tyl::EnumerationTable& table = enumerationTableOf(Verdict{});
  EXPECT_EQ(table.name, "StatusServerErrorMsg");
  ASSERT_EQ(table.enumerators.size(), verdictRows.size());
  for (std::size_t at = 0; at < verdictRows.size(); ++at) {
    EXPECT_EQ(table.enumerators[at].name, verdictRows[at].name);
    EXPECT_EQ(table.enumerators[at].number, verdictRows[at].number);
  }
}

TEST(StatusServerErrorMsgTable, RefusesEveryNumberThatIsNoRow) {
  for (U32 number = verdictRows.size(); number <= 256; ++number) {
    EXPECT_EQ(thrownText<Verda::RangeError>([&] { StatusServerErrorMsgInstance(number); }),
              "StatusServerErrorMsg: " + std::to_string(number) + " is not an enumerator");
    if (number <= 255) {
      EXPECT_EQ(stringValue(static_cast<Verdict>(number)),
                "StatusServerErrorMsg(" + std::to_string(number) + ")");
    }
  }
}

TEST(StatusServerErrorMsgTable, RefusesANameThatIsNoRow) {
  for (const char* name : {"", "Success", "success ", "msgAuthNot", "0", "invalidPktPtr"}) {
    EXPECT_EQ(
        thrownText<Verda::RangeError>([&] { StatusServerErrorMsgInstance(Verda::String(name)); }),
        "StatusServerErrorMsg: \"" + std::string(name) + "\" is not an enumerator");
  }
}

TEST(StatusServerErrorMsgTable, LeavesTheResultAloneWhenTheTextIsNoName) {
  auto result = Verdict::msgAuthNotPresent;
  Tyl::TextReader text("nonsense");
  EXPECT_EQ(thrownText<Verda::RangeError>([&] { sequenceToValue(text, result); }),
            "StatusServerErrorMsg: \"nonsense\" is not an enumerator");
  EXPECT_EQ(result, Verdict::msgAuthNotPresent);
}

TEST(StatusServerErrorMsgTable, IsStoredInOneByte) {
  EXPECT_TRUE((std::is_same_v<std::underlying_type_t<Verdict>, U8>));
}

// ---- The entities ----

TEST(StatusServerPktInfoParser, IsGoodUntilJudged) {
  const auto sink = statusServerPktInfoParserFactory();
  EXPECT_FALSE(sink->msgAuthPresent());
  EXPECT_FALSE(sink->badPkt());
  EXPECT_EQ(sink->errorMsg(), Verdict::success);
  EXPECT_EQ(sink->typeData().name, "StatusServerPktInfoParser");
}

TEST(StatusServerPktInfoParser, KeepsWhatIsSet) {
  const auto sink = StatusServerPktInfoParser::StatusServerPktInfoParserIs();
  sink->badPktIs(true);
  sink->errorMsgIs(Verdict::msgAuthNotPresent);
  sink->msgAuthPresentIs(true);
  EXPECT_TRUE(sink->badPkt());
  EXPECT_EQ(sink->errorMsg(), Verdict::msgAuthNotPresent);
  EXPECT_TRUE(sink->msgAuthPresent());
}

TEST(StatusServerPktParser, HoldsTheDictionary) {
  const auto parser = statusServerPktParserFactory(shippedDictionary());
  EXPECT_EQ(parser->dictionary(), shippedDictionary());
  EXPECT_EQ(parser->typeData().name, "StatusServerPktParser");
  EXPECT_EQ(StatusServerPktParser::StatusServerPktParserIs(shippedDictionary())->dictionary(),
            shippedDictionary());
}

// ---- The verdict on whole packets ----

constexpr U8 statusServer = 12;
constexpr U8 userName = 1;
constexpr U8 classAttr = 25;
constexpr U8 vendorSpecific = 26;
constexpr U8 nasIdentifier = 32;
constexpr U8 eapMessage = 79;
constexpr U8 msgAuth = 80;
constexpr U32 vendor = 311;

constexpr auto forbiddenAttributes = std::to_array<U8>({1, 2, 3, 40, 42, 44, 79});

bool isForbidden(U8 attrId) {
  return std::ranges::find(forbiddenAttributes, attrId) != forbiddenAttributes.end();
}

/// How a packet fared: what `doProcessPkt` returned, and what the sink holds behind it.
struct Judged {
  ErrorMsg result;
  bool badPkt;
  Verdict errorMsg;
  bool msgAuthPresent;

  bool operator==(const Judged&) const = default;
};

void PrintTo(const Judged& judged, std::ostream* out) {
  *out << judged.result << ", badPkt " << judged.badPkt << ", " << judged.errorMsg
       << ", msgAuthPresent " << judged.msgAuthPresent;
}

constexpr Judged good{ErrorMsg::success, false, Verdict::success, true};
constexpr Judged unproven{ErrorMsg::success, true, Verdict::msgAuthNotPresent, false};
constexpr Judged forbidden{ErrorMsg::success, true, Verdict::invalidAttributePresent, true};
constexpr Judged forbiddenUnproven{ErrorMsg::success, true, Verdict::invalidAttributePresent,
                                   false};

/// Judges a packet with an empty dictionary, so that every value is in order for its type.
Judged judged(const PacketMaker& maker) {
  const CapturingSink quiet;
  const ByteVector packet = maker.make();
  const auto sink = statusServerPktInfoParserFactory();
  const auto parser = statusServerPktParserFactory(DictionaryMaker().make());
  const ErrorMsg result =
      parser->doProcessPkt(pktOf(packet), testSecret, verdaBytes(reqAuthFor(packet.at(0))), sink);
  return {result, sink->badPkt(), sink->errorMsg(), sink->msgAuthPresent()};
}

PacketMaker request() {
  return PacketMaker(statusServer);
}

/// An attribute with a value of 16 bytes, which the rules on single attributes let pass.
PacketMaker with(PacketMaker maker, U8 attrId) {
  return attrId == vendorSpecific ? maker.addVendor(vendor, 1, countingBytes(4))
                                  : maker.add(attrId, countingBytes(16));
}

TEST(StatusServerVerdict, IsGoodForAMessageAuthenticatorAlone) {
  EXPECT_EQ(judged(request().addMessageAuthenticator()), good);
}

TEST(StatusServerVerdict, IsGoodForAMessageAuthenticatorFirst) {
  EXPECT_EQ(judged(with(request().addMessageAuthenticator(), nasIdentifier)), good);
}

TEST(StatusServerVerdict, IsGoodForAMessageAuthenticatorLast) {
  EXPECT_EQ(judged(with(request(), nasIdentifier).addMessageAuthenticator()), good);
}

TEST(StatusServerVerdict, IsGoodForAMessageAuthenticatorInBetween) {
  EXPECT_EQ(judged(with(with(request(), nasIdentifier).addMessageAuthenticator(), classAttr)),
            good);
}

TEST(StatusServerVerdict, IsGoodForAPacketWithoutAttributes) {
  EXPECT_EQ(judged(request()), (Judged{ErrorMsg::success, false, Verdict::success, false}));
}

TEST(StatusServerVerdict, MissesTheMessageAuthenticatorBesideANasIdentifier) {
  EXPECT_EQ(judged(with(request(), nasIdentifier)), unproven);
}

TEST(StatusServerVerdict, MissesTheMessageAuthenticatorBesideAVendorSpecific) {
  EXPECT_EQ(judged(with(request(), vendorSpecific)), unproven);
}

TEST(StatusServerVerdict, IsGoodForAVendorSpecificOnEitherSideOfAMessageAuthenticator) {
  EXPECT_EQ(judged(with(request(), vendorSpecific).addMessageAuthenticator()), good);
  EXPECT_EQ(judged(with(request().addMessageAuthenticator(), vendorSpecific)), good);
}

TEST(StatusServerVerdict, TakesNoVendorTypeForAnAttribute) {
  for (const U8 vendorType : forbiddenAttributes) {
    SCOPED_TRACE(int{vendorType});
    EXPECT_EQ(judged(request().addMessageAuthenticator().addVendor(vendor, vendorType, {1})), good);
  }
  EXPECT_EQ(judged(request().addVendor(vendor, msgAuth, countingBytes(16))), unproven);
}

TEST(StatusServerVerdict, ForbidsAUserNameBehindTheMessageAuthenticator) {
  EXPECT_EQ(judged(with(request().addMessageAuthenticator(), userName)), forbidden);
}

TEST(StatusServerVerdict, ForbidsAUserNameInFrontOfTheMessageAuthenticator) {
  EXPECT_EQ(judged(with(request(), userName).addMessageAuthenticator()), forbidden);
}

TEST(StatusServerVerdict, ForbidsEachAttributeOfTheList) {
  for (const U8 attrId : forbiddenAttributes) {
    SCOPED_TRACE(int{attrId});
    EXPECT_EQ(judged(with(request().addMessageAuthenticator(), attrId)), forbidden);
    EXPECT_EQ(judged(with(request(), attrId).addMessageAuthenticator()), forbidden);
  }
}

TEST(StatusServerVerdict, ForbidsEachAttributeOfTheListWithoutAMessageAuthenticator) {
  for (const U8 attrId : forbiddenAttributes) {
    SCOPED_TRACE(int{attrId});
    Judged expected = forbiddenUnproven;
    if (attrId == eapMessage) {
      expected.result = ErrorMsg::missingRequiredMsgAuth;
    }
    EXPECT_EQ(judged(with(request(), attrId)), expected);
  }
}

TEST(StatusServerVerdict, AllowsEveryOtherAttributeOnEitherSideOfAMessageAuthenticator) {
  for (U32 number = 0; number < 256; ++number) {
    const auto attrId = static_cast<U8>(number);
    if (isForbidden(attrId) || attrId == msgAuth) {
      continue;
    }
    SCOPED_TRACE(number);
    EXPECT_EQ(judged(with(request().addMessageAuthenticator(), attrId)), good);
    EXPECT_EQ(judged(with(request(), attrId).addMessageAuthenticator()), good);
    EXPECT_EQ(judged(with(request(), attrId)), unproven);
  }
}

TEST(StatusServerVerdict, IsFinalOnceAForbiddenAttributeIsMet) {
  EXPECT_EQ(judged(with(with(request(), userName), nasIdentifier)), forbiddenUnproven);
  EXPECT_EQ(judged(with(with(request(), nasIdentifier), userName)), forbiddenUnproven);
  EXPECT_EQ(judged(with(with(request(), userName), nasIdentifier).addMessageAuthenticator()),
            forbidden);
  EXPECT_EQ(judged(with(with(with(request(), nasIdentifier), userName).addMessageAuthenticator(),
                        nasIdentifier)),
            forbidden);
}

TEST(StatusServerVerdict, StaysWhenTheWalkRefusesASecondMessageAuthenticator) {
  EXPECT_EQ(
      judged(with(request().addMessageAuthenticator(), userName).add(msgAuth, countingBytes(16))),
      (Judged{ErrorMsg::invalidMsgAuth, true, Verdict::invalidAttributePresent, true}));
}

TEST(StatusServerVerdict, IsNotClearedByAWrongMessageAuthenticator) {
  EXPECT_EQ(judged(with(request(), nasIdentifier).addMessageAuthenticator(true)),
            (Judged{ErrorMsg::invalidMsgAuth, true, Verdict::msgAuthNotPresent, false}));
  EXPECT_EQ(judged(request().addMessageAuthenticator(true)),
            (Judged{ErrorMsg::invalidMsgAuth, false, Verdict::success, false}));
}

TEST(StatusServerVerdict, SaysNothingOfAttributesBehindAFault) {
  EXPECT_EQ(judged(request().addMessageAuthenticator().addRaw({userName, 1}).add(userName, {'a'})),
            (Judged{ErrorMsg::invalidAttrLength, false, Verdict::success, true}));
}

TEST(StatusServerVerdict, IsTheSameForPacketsOfEveryCode) {
  for (const U8 code : std::to_array<U8>({1, 2, 3, 4, 5, 11, 12, 40, 43})) {
    SCOPED_TRACE(int{code});
    EXPECT_EQ(judged(with(PacketMaker(code), nasIdentifier).addMessageAuthenticator()), good);
    EXPECT_EQ(judged(with(PacketMaker(code).addMessageAuthenticator(), userName)), forbidden);
    EXPECT_EQ(judged(with(PacketMaker(code), nasIdentifier)), unproven);
  }
}

TEST(StatusServerVerdict, DoesNotDependOnWhatTheDictionaryKnows) {
  const auto parser = statusServerPktParserFactory(shippedDictionary());
  const auto verdictOf = [&](const PacketMaker& maker) {
    const auto sink = statusServerPktInfoParserFactory();
    EXPECT_EQ(parser->doProcessPkt(pktOf(maker.make()), testSecret, {}, sink), ErrorMsg::success);
    return sink->errorMsg();
  };
  EXPECT_EQ(verdictOf(request().add(nasIdentifier, {'n'}).addMessageAuthenticator()),
            Verdict::success);
  EXPECT_EQ(verdictOf(request().addMessageAuthenticator().add(userName, {'a'})),
            Verdict::invalidAttributePresent);
  EXPECT_EQ(verdictOf(request().add(nasIdentifier, {'n'})), Verdict::msgAuthNotPresent);
}

// ---- The hook itself ----

struct Hook {
  Verda::Ptr<StatusServerPktParser> parser = statusServerPktParserFactory(shippedDictionary());
  Verda::Ptr<StatusServerPktInfoParser> sink = statusServerPktInfoParserFactory();

  void call(U8 attrId) const {
    parser->doProcessAttribute(standardAttribute(attrId), AttrValue(), AttrInfo(), sink);
  }
};

TEST(StatusServerHook, TurnsAMissingMessageAuthenticatorIntoSuccessWhenItComes) {
  const Hook hook;
  hook.call(nasIdentifier);
  EXPECT_TRUE(hook.sink->badPkt());
  EXPECT_EQ(hook.sink->errorMsg(), Verdict::msgAuthNotPresent);
  hook.call(msgAuth);
  EXPECT_FALSE(hook.sink->badPkt());
  EXPECT_EQ(hook.sink->errorMsg(), Verdict::success);
  EXPECT_FALSE(hook.sink->msgAuthPresent());
}

TEST(StatusServerHook, LeavesBothFieldsAloneOnceTheMessageAuthenticatorIsPresent) {
  const Hook hook;
  hook.sink->msgAuthPresentIs(true);
  hook.sink->badPktIs(true);
  hook.sink->errorMsgIs(Verdict::msgAuthNotPresent);
  hook.call(nasIdentifier);
  EXPECT_TRUE(hook.sink->badPkt());
  EXPECT_EQ(hook.sink->errorMsg(), Verdict::msgAuthNotPresent);
}

TEST(StatusServerHook, DoesNothingBehindAForbiddenAttribute) {
  const Hook hook;
  hook.sink->errorMsgIs(Verdict::invalidAttributePresent);
  for (const U8 attrId : {userName, nasIdentifier, msgAuth}) {
    hook.call(attrId);
    EXPECT_FALSE(hook.sink->badPkt());
    EXPECT_EQ(hook.sink->errorMsg(), Verdict::invalidAttributePresent);
  }
}

// ---- Trace ----

const std::string facility = "RadiusPacketParser::RadiusPktParserTest";
const CapturedRecord entryRecord{facility, Verda::traceEntries, "StatusServerPktParser",
                                 "doProcessAttribute", "entry"};

TEST(StatusServerTrace, HoldsOneEntryForEachAttributeWhateverTheVerdict) {
  const Hook hook;
  const CapturingSink trace(Verda::traceEntries);
  hook.call(nasIdentifier);
  hook.call(msgAuth);
  hook.call(userName);
  hook.call(nasIdentifier);
  EXPECT_EQ(trace.records(), (Records{entryRecord, entryRecord, entryRecord, entryRecord}));
}

TEST(StatusServerTrace, IsSilentBelowItsLevel) {
  for (const int threshold : {Verda::traceOff, Verda::traceErrors, Verda::traceEntries - 1}) {
    const Hook hook;
    const CapturingSink trace(threshold);
    hook.call(userName);
    EXPECT_EQ(trace.records(), Records());
    EXPECT_EQ(hook.sink->errorMsg(), Verdict::invalidAttributePresent);
  }
}

TEST(StatusServerTrace, HasAFacilityOfItsOwn) {
  const auto sink = statusServerPktInfoParserFactory();
  const auto parser = statusServerPktParserFactory(shippedDictionary());
  const CapturingSink trace(Verda::traceOff);
  ASSERT_TRUE(Verda::traceThresholdIs(facility, Verda::traceEntries));
  EXPECT_EQ(
      parser->doProcessPkt(pktOf(with(request(), nasIdentifier).addMessageAuthenticator().make()),
                           testSecret, {}, sink),
      ErrorMsg::success);
  EXPECT_EQ(trace.records(), (Records{entryRecord, entryRecord}));
}

}  // namespace
