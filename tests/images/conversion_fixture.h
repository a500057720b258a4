#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "images/conversion.h"
#include "images/test_image.h"
#include "support/recording_report.h"
#include "support/scratch_folder.h"
#include "support/told_image.h"

namespace tarnwick::tests {

/// A folder with a destination "out" in it, and the three conversions with the real worker.
class ConversionTest : public testing::Test {
 protected:
  ConversionTest() { std::filesystem::create_directory(Folder.Path("out")); }

  std::string Out(const std::string& name) const { return Folder.Path("out/" + name); }
  images::ConversionContext Context() { return {Report, Worker, {}}; }
  std::string ToTga(const std::string& source) { return images::ConvertToTga(source, Folder.Path("out"), Context()); }
  std::string ToTgaWithAlpha(const std::string& source, const std::string& alpha) {
    return images::ConvertToTgaWithAlpha(source, alpha, Folder.Path("out"), Context());
  }
  bool ToImage(const std::string& tga, const std::string& destination) {
    return images::ConvertTgaToImage(tga, destination, Context());
  }

  ScratchFolder Folder;
  RecordingReport Report;
  images::ImageWorker Worker;
};

}  // namespace tarnwick::tests
