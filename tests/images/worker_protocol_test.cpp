#include "images/worker_protocol.h"

#include <gtest/gtest.h>

namespace tarnwick::tests {

namespace {

using images::ParseAnswer;

TEST(WorkerProtocol, CarriesARequestThroughArguments) {
  images::WorkerRequest request;
  request.Task = images::WorkerRequest::Job::FromTga;
  request.Source = "/a b/ü.tga";
  request.Output = "/out/.temporary file";
  request.Name = "x.png";
  request.Side = 96;
  const auto back = images::FromArguments(images::ToArguments(request));
  ASSERT_TRUE(back);
  EXPECT_EQ(back->Task, request.Task);
  EXPECT_EQ(back->Source, request.Source);
  EXPECT_EQ(back->Alpha, "");
  EXPECT_EQ(back->Output, request.Output);
  EXPECT_EQ(back->Name, request.Name);
  EXPECT_EQ(back->Side, 96);
  EXPECT_FALSE(back->UseDamaged || back->FamiliarOnly);
  request.UseDamaged = true;
  EXPECT_TRUE(images::FromArguments(images::ToArguments(request))->UseDamaged);
  request.UseDamaged = false;
  request.FamiliarOnly = true;
  EXPECT_TRUE(images::FromArguments(images::ToArguments(request))->FamiliarOnly);
  EXPECT_FALSE(images::FromArguments(std::vector<std::string>{"to-tga", "a", "", "b", "", "0", ""}));
  EXPECT_FALSE(images::FromArguments(std::vector<std::string>{"erase", "a", "", "b", "", "0", "", ""}));
}

TEST(WorkerProtocol, TrustsNoAnswer) {
  EXPECT_FALSE(ParseAnswer(""));
  EXPECT_FALSE(ParseAnswer("done 4 4 0"));
  EXPECT_FALSE(ParseAnswer("done\n"));
  EXPECT_FALSE(ParseAnswer("done 99999999999999999999 4 0\n"));
  EXPECT_FALSE(ParseAnswer("done 16385 4 0\n"));
  EXPECT_FALSE(ParseAnswer("done -4 4 0\n"));
  EXPECT_FALSE(ParseAnswer("\x1b[2Jdone 4 4 0\n"));

  const auto answer = ParseAnswer("done 2 1 1\n12345678");
  ASSERT_TRUE(answer && answer->Done && answer->AlphaReplaced);
  EXPECT_EQ(answer->Payload, "12345678");

  images::WorkerAnswer said;
  said.Done = true;
  said.AlphaReason = "it is\ta\nJPEG";
  said.Doubt = "cut";
  const auto heard = ParseAnswer(images::AnswerLine(said));
  ASSERT_TRUE(heard);
  EXPECT_EQ(heard->AlphaReason, "it is a JPEG");
  EXPECT_EQ(heard->Doubt, "cut");
  const auto damaged = ParseAnswer("damaged it ends early\n");
  ASSERT_TRUE(damaged && damaged->Damaged && !damaged->Done);
  EXPECT_EQ(damaged->Reason, "it ends early");

  const auto failure = ParseAnswer("failed \x1b[2J\x07" + std::string(5000, 'x') + "\n");
  ASSERT_TRUE(failure && !failure->Done);
  EXPECT_EQ(failure->Reason.substr(0, 6), " [2J x");
  EXPECT_LT(failure->Reason.size(), 400u);
}

}  // namespace

}  // namespace tarnwick::tests
