#include "images/conversion.h"

#include <filesystem>
#include <optional>

#include "core/file_image.h"
#include "core/output_file.h"
#include "core/paths.h"
#include "images/image_format.h"
#include "images/tga_path.h"
#include "textures/dds_writer.h"
#include "textures/tga_reader.h"

namespace tarnwick::images {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view FailureCaption = "TGA Error";

/// `path` with separators of one kind, for a person to read.
std::string ShownPath(const std::string& path) {
  return core::PathText(core::NativePath(path));
}

std::string FailureText(const std::string& destination) {
  return "Unable to create TGA file " + ShownPath(destination) + "\n";
}

/// Appends "Converting <name> from " and what becomes of what. A format that has no word leaves the line open; the
/// result says whether it is.
bool LogConversion(const std::string& path, const ImageFormat* format, bool toTga, bool nameTga, core::Report& report) {
  report.Log("Converting " + std::string(ImageFileName(path)) + " from ");
  if (format == nullptr || (format->Number == FormatTga && !nameTga)) return true;
  report.Log((toTga ? std::string(format->Word) + " to TGA" : "TGA to " + std::string(format->Word)) + "\r\n");
  return false;
}

/// The box of a failed conversion, with the reason in its details and in the log. `lineOpen`: the log's last line has
/// no end yet.
void ReportFailure(core::TroubleKind kind, const std::string& source, const std::string& destination,
                   const std::string& reason, bool lineOpen, core::Report& report) {
  const std::string cause = std::string(ImageFileName(source)) + ": " + reason;
  report.Log((lineOpen ? "\r\n" : "") + cause + "\r\n");
  report.Tell({.Kind = kind,
               .File = source,
               .Text = FailureText(destination),
               .Caption = std::string(FailureCaption),
               .Details = cause,
               .Alike = reason});
}

/// Tells what is to be known of a conversion that went well.
void TellDoubts(const WorkerRequest& request, const WorkerAnswer& answer, bool lineOpen, core::Report& report) {
  const auto warn = [&](core::TroubleKind kind, const std::string& file, const std::string& text) {
    report.Log((lineOpen ? "\r\n" : "") + std::string("WARNING, ") + text + "\r\n");
    lineOpen = false;
    report.Tell({.Level = core::Severity::Warning, .Kind = kind, .File = file, .Text = text});
  };
  const std::string name(ImageFileName(request.Source));
  if (!answer.Doubt.empty()) {
    warn(core::TroubleKind::Damaged, request.Source, name + " is used though it is damaged: " + answer.Doubt);
  }
  if (!request.Alpha.empty() && !answer.AlphaReplaced) {
    warn(core::TroubleKind::Unreadable, request.Alpha,
         "the alpha channel of " + name + " stays, for " + std::string(ImageFileName(request.Alpha)) +
             " was not used: " + answer.AlphaReason);
  }
}

/// The directory that `path` lies in, if it does not exist and may be made.
bool CreateDirectoryOf(const std::string& path, const ConversionContext& context, std::string& reason) {
  const fs::path directory = core::NativePath(path).parent_path();
  std::error_code error;
  if (directory.empty() || fs::exists(directory, error) || !context.MayCreate) return false;
  if (!context.MayCreate({FailureText(path), std::string(FailureCaption), core::PathText(directory)})) {
    reason.clear();  // the user has seen the box and has decided
    return false;
  }
  fs::create_directories(directory, error);
  if (error) reason = core::PathText(directory) + " cannot be created: " + error.message();
  return !error;
}

/// Writes the TGA file at `tga` as a DDS file.
WorkerAnswer TgaToDds(const std::string& tga, core::OutputFile& output) {
  WorkerAnswer answer;
  const auto file = core::FileImage::Read(tga, &answer.Reason);
  if (!file) {
    answer.Reason = "the file cannot be opened: " + answer.Reason;
    return answer;
  }
  const auto picture = textures::ReadTga(file->View(), answer.Reason);
  answer.Done = picture && textures::WriteDds(*picture, [&](std::string_view bytes) { return output.Write(bytes); });
  if (picture && !answer.Done) answer.Reason = output.Error();
  return answer;
}

/// Does what `request` says: the worker does, but for DDS files, which its library cannot write.
WorkerAnswer Run(const WorkerRequest& request, core::OutputFile& output, const ConversionContext& context) {
  const ImageFormat* format = FormatOfFileName(request.Name);
  const bool dds = request.Task == WorkerRequest::Job::FromTga && format != nullptr && format->Number == FormatDds;
  return dds ? TgaToDds(request.Source, output) : context.Worker.Run(request);
}

/// Does `request` and gives its result the name `destination`. On failure everything is told.
bool Convert(WorkerRequest request, const std::string& destination, bool lineOpen, const ConversionContext& context) {
  core::TroubleKind kind = core::TroubleKind::Unwritable;
  std::string reason;
  auto output = core::OutputFile::Create(destination, &reason);
  if (!output && CreateDirectoryOf(destination, context, reason)) {
    output = core::OutputFile::Create(destination, &reason);
  }
  if (!output && reason.empty()) return false;
  if (output) {
    request.Output = core::PathText(output->TemporaryPath());
    WorkerAnswer answer = Run(request, *output, context);
    if (answer.Damaged && context.MayUseDamaged) {
      const DamagedImage damaged{request.Source, answer.Reason, FailureText(destination), std::string(FailureCaption)};
      if (!context.MayUseDamaged(damaged)) return false;  // the user has seen the box and has decided
      request.UseDamaged = true;
      answer = Run(request, *output, context);
    }
    if (answer.Stopped) return false;  // whoever has asked for it knows
    if (answer.Done && output->Commit()) {
      TellDoubts(request, answer, lineOpen, context.Report);
      return true;
    }
    if (!answer.Done) kind = answer.Damaged ? core::TroubleKind::Damaged : core::TroubleKind::Unreadable;
    reason = answer.Done ? output->Error() : answer.Reason;
  } else {
    reason = ShownPath(destination) + " cannot be created: " + reason;
  }
  ReportFailure(kind, request.Source, destination, reason, lineOpen, context.Report);
  return false;
}

/// What the two conversions to TGA differ in.
struct ToTgaVariant {
  std::string_view SameFileWarning;
  bool NamesTga;  // whether the log has a word for TGA sources
};

std::string ToTga(const std::string& source, const std::string& alpha, const std::string& directory,
                  const ToTgaVariant& variant, const ConversionContext& context) {
  const std::string destination = TgaPath(source, directory);
  std::string text = SourceText(source);
  if (IsSameFile(source, destination)) {
    context.Report.Log(variant.SameFileWarning);
    return text;
  }
  bool lineOpen = LogConversion(text, FormatOfFileName(text), true, variant.NamesTga, context.Report);
  if (!alpha.empty()) {
    context.Report.Log("Replacing Alpha Channel in " + std::string(ImageFileName(text)) + " from " +
                       std::string(ImageFileName(alpha)) + "\r\n");
    lineOpen = false;
  }
  WorkerRequest request;
  request.Task = WorkerRequest::Job::ToTga;
  request.Source = text;
  request.Alpha = alpha;
  return Convert(std::move(request), destination, lineOpen, context) ? destination : std::string();
}

}  // namespace

std::string ConvertToTga(const std::string& source, const std::string& directory, const ConversionContext& context) {
  return ToTga(source, "", directory,
               {"WARNING, Source and destination files are the same, file is not checked\r\n", false}, context);
}

std::string ConvertToTgaWithAlpha(const std::string& source, const std::string& alpha, const std::string& directory,
                                  const ConversionContext& context) {
  return ToTga(source, alpha, directory,
               {"WARNING, Source and destination files are the same, file is unmodified\r\n", true}, context);
}

std::string ConvertMapToTga(const std::string& source, const std::optional<std::string>& alpha,
                            const std::string& directory, const ConversionContext& context) {
  return alpha ? ConvertToTgaWithAlpha(source, *alpha, directory, context) : ConvertToTga(source, directory, context);
}

bool ConvertTgaToImage(const std::string& tga, const std::string& destination, const ConversionContext& context) {
  const ImageFormat* format = FormatOfFileName(destination);
  if (format != nullptr && format->Number == FormatTga) return false;
  const bool lineOpen = LogConversion(tga, format, false, false, context.Report);
  WorkerRequest request;
  request.Task = WorkerRequest::Job::FromTga;
  request.Source = tga;
  request.Name = std::string(core::LastComponent(destination));
  return Convert(std::move(request), destination, lineOpen, context);
}

}  // namespace tarnwick::images
