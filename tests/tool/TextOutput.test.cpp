#include "tool/output/TextOutput.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/tool/SampleReport.h"

namespace RadiusPacketTool {
namespace {

using RadiusPktParserBase::ErrorMsg;
using RadiusPktParserTest::StatusServerErrorMsg;

constexpr const char* sampleHeader =
    "ACCESS_ACCEPT, id 7, length 20, authenticator 000102030405060708090a0b0c0d0e0f (verified), "
    "packet 2 of file.hex\n";

TEST(TextOutput, BeginsWithAHeaderLine) {
  EXPECT_EQ(textOf(sampleReport()), sampleHeader);
}

TEST(TextOutput, SaysWhichRequestAResponseWasPairedWith) {
  PacketReport report = sampleReport();
  report.pairedWith = {.source = "\x1b.hex", .index = 1};
  EXPECT_EQ(textOf(report),
            "ACCESS_ACCEPT, id 7, length 20, authenticator 000102030405060708090a0b0c0d0e0f "
            "(verified), packet 2 of file.hex, paired with packet 1 of \\x1b.hex\n");
}

TEST(TextOutput, SaysWhatCarriedAPacketAndWhatItRepeats) {
  PacketReport report = sampleReport();
  report.datagram = sampleDatagram();
  report.pairedWith = {.source = "x.pcap", .index = 1};
  report.retransmissionOf = {.source = "\x1b.pcap", .index = 3};
  EXPECT_EQ(textOf(report),
            "ACCESS_ACCEPT, id 7, length 20, authenticator 000102030405060708090a0b0c0d0e0f "
            "(verified), 192.0.2.1:40000 > [2001:db8::1]:1812, 2026-11-21T10:00:00.123456Z, packet "
            "2 of file.hex, paired with packet 1 of x.pcap, retransmission of packet 3 of "
            "\\x1b.pcap\n");
}

TEST(TextOutput, SaysWhatWasFoundOutAboutTheAuthenticators) {
  PacketReport report = sampleReport();
  report.authenticatorCheck = Check::unchecked;
  report.messageAuthenticatorCheck = Check::verified;
  EXPECT_EQ(textOf(report),
            "ACCESS_ACCEPT, id 7, length 20, authenticator 000102030405060708090a0b0c0d0e0f "
            "(unchecked), Message-Authenticator (verified), packet 2 of file.hex\n");
  report.authenticatorCheck = Check::wrong;
  report.messageAuthenticatorCheck = Check::unchecked;
  EXPECT_EQ(textOf(report),
            "ACCESS_ACCEPT, id 7, length 20, authenticator 000102030405060708090a0b0c0d0e0f "
            "(wrong), Message-Authenticator (unchecked), packet 2 of file.hex\n");
}

TEST(TextOutput, PrintsTheNumberOfACodeWithoutName) {
  PacketReport report;
  report.place.source = "-";
  report.place.index = 1;
  report.header.code = 14;
  report.error = ErrorMsg::success;
  EXPECT_EQ(textOf(report), "RadiusCode(14), packet 1 of -\n");
}

TEST(TextOutput, PrintsOneLineForEachAttribute) {
  PacketReport report = sampleReport();
  report.attributes = {sampleAttribute("Acct-Status-Type", ShownNumber{1, "START"}),
                       sampleAttribute("NAS-Port", ShownNumber{3, ""}),
                       sampleAttribute("User-Name", ShownText{R"(a\"b)"}),
                       sampleAttribute("State", ShownBytes{{0x01, 0xab}}),
                       sampleAttribute("State", ShownBytes{}),
                       sampleAttribute("NAS-IP-Address", ShownPlain{"192.0.2.1"})};
  EXPECT_EQ(textOf(report), std::string(sampleHeader) +
                                "Acct-Status-Type = START (1)\n"
                                "NAS-Port = 3\n"
                                "User-Name = \"a\\\"b\"\n"
                                "State = 0x01ab\n"
                                "State = 0x\n"
                                "NAS-IP-Address = 192.0.2.1\n");
}

TEST(TextOutput, KeepsRevealedValuesToItselfWhereThatIsAskedFor) {
  PacketReport report = sampleReport();
  report.attributes = {sampleAttribute("User-Password", ShownText{"secret"}),
                       sampleAttribute("User-Name", ShownText{"nemo"})};
  report.attributes[0].isRevealed = true;
  EXPECT_THAT(textOf(report), testing::EndsWith("User-Password = \"secret\"\n"
                                                "User-Name = \"nemo\"\n"));
  EXPECT_THAT(textOf(report, {.redact = true}), testing::EndsWith("User-Password = (redacted)\n"
                                                                  "User-Name = \"nemo\"\n"));
}

TEST(TextOutput, PrintsTagsBehindTheName) {
  PacketReport report = sampleReport();
  report.attributes = {sampleAttribute("Tunnel-Type", ShownNumber{3, ""}, 0),
                       sampleAttribute("Tunnel-Type", ShownNumber{3, ""}, 255)};
  EXPECT_EQ(textOf(report), std::string(sampleHeader) + "Tunnel-Type:0 = 3\nTunnel-Type:255 = 3\n");
}

TEST(TextOutput, LeavesTheFaultOfARefusedPacketToStandardError) {
  PacketReport report = sampleReport();
  report.error = ErrorMsg::invalidMsgAuth;
  report.reason = "Message authenticator present more than once";
  report.attributes = {sampleAttribute("NAS-Port", ShownNumber{3, ""})};
  EXPECT_EQ(textOf(report), std::string(sampleHeader) + "NAS-Port = 3\n");
  report.error.reset();
  report.reason = "no Request Authenticator";
  report.attributes.clear();
  EXPECT_EQ(textOf(report), sampleHeader);
}

TEST(TextOutput, PrintsTheStatusServerVerdictBehindTheHeaderLine) {
  PacketReport report = sampleReport();
  report.statusServer = StatusServerErrorMsg::invalidAttributePresent;
  report.attributes = {sampleAttribute("NAS-Port", ShownNumber{3, ""})};
  EXPECT_EQ(textOf(report, {.statusServer = true}),
            std::string(sampleHeader) + "Status-Server: invalidAttributePresent\nNAS-Port = 3\n");
}

TEST(TextOutput, PrintsNoStatusServerVerdictThatIsNotThereOrNotAskedFor) {
  PacketReport report = sampleReport();
  EXPECT_EQ(textOf(report, {.statusServer = true}), sampleHeader);
  report.statusServer = StatusServerErrorMsg::success;
  EXPECT_EQ(textOf(report, {.statusServer = false}), sampleHeader);
}

TEST(TextOutput, NamesCannotDriveATerminal) {
  PacketReport report = sampleReport();
  report.place.source = "\x1b[2J\xff";
  report.attributes = {sampleAttribute("a\x1b[31m", ShownNumber{})};
  EXPECT_EQ(textOf(report),
            "ACCESS_ACCEPT, id 7, length 20, authenticator 000102030405060708090a0b0c0d0e0f "
            "(verified), packet 2 of \\x1b[2J\\xff\n"
            "a\\x1b[31m = 0\n");
}

}  // namespace
}  // namespace RadiusPacketTool
