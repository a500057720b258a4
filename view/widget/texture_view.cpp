#include "view/widget/texture_view.h"

#include <QComboBox>
#include <QFileInfo>
#include <QFileSystemWatcher>
#include <QGridLayout>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>
#include <iterator>

#include "core/byte_size.h"
#include "platform/text.h"
#include "view/widget/picture_view.h"

namespace tarnwick::view {

using platform::FromQt;
using platform::ToQt;

namespace {

constexpr int PauseMilliseconds = 150;
constexpr int FrameMilliseconds = 100;
constexpr const char* NothingNamed = "The texture that is named is shown here";
constexpr double Zooms[] = {0, 0.125, 0.25, 0.5, 1, 2, 4, 8, 16};
constexpr const char* FaceNames[] = {"Right", "Left", "Back", "Front", "Up", "Down", "Sphere map"};

QString Size(const textures::VtfInfo& info, int mip) {
  QString text = QString("%1 × %2").arg(textures::MipSize(info.Width, mip)).arg(textures::MipSize(info.Height, mip));
  if (info.Depth > 1) text += QString(" × %1").arg(textures::MipSize(info.Depth, mip));
  return text;
}

QString Counted(int count, const char* thing) {
  return QString("%1 %2%3").arg(count).arg(thing, count == 1 ? "" : "s");
}

/// Two lines: what the texture is, and its flags.
QString Facts(const TextureFile& file) {
  const textures::VtfInfo& info = file.Info();
  QStringList facts = {Size(info, 0), ToQt(textures::PixelFormatName(info.Format)),
                       Counted(info.MipLevels, "mip level"), Counted(info.Frames, "frame")};
  if (info.Faces > 1) facts << Counted(info.Faces, "face");
  facts << QString("version %1.%2").arg(info.MajorVersion).arg(info.MinorVersion)
        << ToQt(core::FormatByteSize(file.FileBytes()));
  QStringList flags;
  for (const textures::VtfFlagName& known : textures::VtfFlagNames()) {
    if ((info.Flags & known.Flag) != 0) flags << ToQt(known.Name);
  }
  QString flagText = QString("Flags 0x%1").arg(info.Flags, 8, 16, QChar('0'));
  if (!flags.isEmpty()) flagText += ": " + flags.join(", ");
  return facts.join(", ") + "\n" + flagText;
}

/// Fills `box` anew and keeps the choice where it is still there.
void Refill(QComboBox& box, const QStringList& words) {
  const QSignalBlocker quiet(box);
  const int chosen = box.currentIndex();
  box.clear();
  box.addItems(words);
  box.setCurrentIndex(std::clamp(chosen, 0, std::max(static_cast<int>(words.size()) - 1, 0)));
}

QString ZoomText(double zoom) {
  return zoom <= 0 ? QString("Fit") : QString("%1 %").arg(QLocale().toString(zoom * 100, 'g', 4));
}

}  // namespace

TextureView::TextureView(QWidget* parent)
    : QWidget(parent),
      m_picture(new PictureView),
      m_facts(new QLabel),
      m_mip(new QComboBox),
      m_frame(new QSpinBox),
      m_play(new QPushButton("&Play")),
      m_face(new QComboBox),
      m_slice(new QSpinBox),
      m_channels(new QComboBox),
      m_zoom(new QComboBox),
      m_watcher(new QFileSystemWatcher(this)) {
  m_picture->setObjectName("texturePicture");
  m_picture->setAccessibleName("Texture");
  m_facts->setObjectName("textureFacts");
  m_facts->setTextFormat(Qt::PlainText);
  m_facts->setWordWrap(true);
  m_facts->setTextInteractionFlags(Qt::TextSelectableByMouse);
  m_channels->addItems({"Colour and alpha", "Colour", "Red", "Green", "Blue", "Alpha"});
  for (const double zoom : Zooms) m_zoom->addItem(ZoomText(zoom), zoom);
  m_play->setObjectName("playFrames");
  m_play->setCheckable(true);
  m_play->setAutoDefault(false);
  m_play->setToolTip("Show one frame after the other, ten a second");
  for (QComboBox* box : {m_mip, m_face, m_channels, m_zoom}) {
    box->setMinimumContentsLength(6);
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  }

  auto* controls = new QGridLayout;
  const auto add = [&](int row, int column, const char* text, const char* name, QWidget* control) {
    auto* label = new QLabel(text);
    label->setBuddy(control);
    label->setObjectName(QString(name) + "Label");
    control->setObjectName(name);
    control->setAccessibleName(QString(text).remove('&').remove(':'));
    controls->addWidget(label, row, column);
    controls->addWidget(control, row, column + 1);
  };
  add(0, 0, "&Mip level:", "mipCombo", m_mip);
  add(0, 2, "Channe&ls:", "channelsCombo", m_channels);
  add(1, 0, "&Zoom:", "zoomCombo", m_zoom);
  add(1, 2, "C&ube face:", "faceCombo", m_face);
  add(2, 0, "F&rame:", "frameSpin", m_frame);
  controls->addWidget(m_play, 2, 2, 1, 2);
  add(3, 0, "&Slice:", "sliceSpin", m_slice);
  controls->setColumnStretch(1, 1);
  controls->setColumnStretch(3, 1);
  auto* rows = new QVBoxLayout(this);
  rows->setContentsMargins(0, 0, 0, 0);
  rows->addWidget(m_picture, 1);
  rows->addWidget(m_facts);
  rows->addLayout(controls);

  m_waiting.setSingleShot(true);
  m_waiting.setInterval(PauseMilliseconds);
  m_playing.setInterval(FrameMilliseconds);
  connect(&m_waiting, &QTimer::timeout, this, &TextureView::Load);
  connect(&m_playing, &QTimer::timeout, this, &TextureView::ShowNextFrame);
  connect(m_watcher, &QFileSystemWatcher::fileChanged, this, [this] { m_waiting.start(); });
  connect(m_play, &QAbstractButton::toggled, this, [this](bool on) { on ? m_playing.start() : m_playing.stop(); });
  for (QComboBox* box : {m_mip, m_face, m_channels}) {
    connect(box, &QComboBox::currentIndexChanged, this, &TextureView::ShowImage);
  }
  for (QSpinBox* box : {m_frame, m_slice}) connect(box, &QSpinBox::valueChanged, this, &TextureView::ShowImage);
  connect(m_zoom, &QComboBox::currentIndexChanged, this, [this] {
    if (m_zoom->currentData().isValid()) m_picture->SetZoom(m_zoom->currentData().toDouble());
  });
  connect(m_picture, &PictureView::ZoomChanged, this, &TextureView::TakeZoom);
  TakeFile(nullptr, NothingNamed);
}

void TextureView::Offer(QWidget& control, bool isOffered) {
  control.setVisible(isOffered);
  findChild<QLabel*>(control.objectName() + "Label")->setVisible(isOffered);
}

void TextureView::ShowFile(const QString& path, std::shared_ptr<const core::FileSource> files) {
  if (path == m_path) return;
  m_path = path;
  m_files = std::move(files);
  m_loading.Forget();
  m_waiting.start();
}

void TextureView::Load() {
  if (!m_watcher->files().isEmpty()) m_watcher->removePaths(m_watcher->files());
  if (m_path.isEmpty()) return TakeFile(nullptr, NothingNamed);
  struct Loaded {
    std::shared_ptr<const TextureFile> File;
    std::string Reason;
  };
  m_loading.Run(
      [path = FromQt(m_path), files = m_files] {
        Loaded loaded;
        loaded.File = TextureFile::Read(path, loaded.Reason, files != nullptr ? *files : core::DiskFiles());
        return loaded;
      },
      [this](const Loaded& loaded) {
        TakeFile(loaded.File, "No picture: " + ToQt(loaded.Reason));
        if (QFileInfo::exists(m_path)) m_watcher->addPath(m_path);
      });
}

void TextureView::TakeFile(std::shared_ptr<const TextureFile> file, const QString& reason) {
  m_file = std::move(file);
  const bool isOther = m_path != m_shownPath;  // the same one, written anew, is looked at as before
  m_shownPath = m_path;
  const textures::VtfInfo info = m_file ? m_file->Info() : textures::VtfInfo();
  QStringList mips;
  for (int mip = 0; mip < info.MipLevels; ++mip) mips << QString("%1: %2").arg(mip).arg(Size(info, mip));
  Refill(*m_mip, mips);
  QStringList faces;
  for (int face = 0; face < info.Faces && info.Faces > 1; ++face) {
    faces << FaceNames[std::min(face, static_cast<int>(std::size(FaceNames)) - 1)];
  }
  Refill(*m_face, faces);
  for (auto [box, count] : {std::pair(m_frame, info.Frames), std::pair(m_slice, info.Depth)}) {
    const QSignalBlocker quiet(box);
    box->setRange(0, std::max(count - 1, 0));
    Offer(*box, count > 1);
    if (isOther) box->setValue(0);
  }
  if (isOther && m_mip->count() > 0) {
    const QSignalBlocker quiet(m_mip);
    m_mip->setCurrentIndex(0);
  }
  m_mip->setEnabled(m_mip->count() > 1);
  Offer(*m_face, info.Faces > 1);
  m_channels->setEnabled(m_file != nullptr);
  m_zoom->setEnabled(m_file != nullptr);
  m_play->setVisible(info.Frames > 1);
  if (info.Frames <= 1) m_play->setChecked(false);
  m_facts->setText(m_file ? Facts(*m_file) : QString());
  if (m_file) return ShowImage();
  m_decoding.Forget();
  m_picture->ShowText(reason);
}

void TextureView::ShowImage() {
  if (!m_file) return;
  const int mip = std::max(m_mip->currentIndex(), 0);
  {
    const QSignalBlocker quiet(m_slice);  // smaller mip levels have fewer slices
    m_slice->setMaximum(textures::MipSize(m_file->Info().Depth, mip) - 1);
  }
  const textures::VtfImagePlace place{mip, m_frame->value(), std::max(m_face->currentIndex(), 0), m_slice->value()};
  const auto channels = static_cast<TextureChannels>(m_channels->currentIndex());
  m_decoding.Run([file = m_file, place, channels] { return file->Decode(place, channels); },
                 [this](const QImage& image) {
                   if (image.isNull()) return m_picture->ShowText("No picture: there is not enough memory");
                   m_picture->ShowPicture(image, m_path);
                 });
}

void TextureView::ShowNextFrame() {
  if (m_decoding.IsRunning()) return;  // a slow frame is waited for
  m_frame->setValue(m_frame->value() < m_frame->maximum() ? m_frame->value() + 1 : 0);
}

void TextureView::TakeZoom(double zoom) {
  const QSignalBlocker quiet(m_zoom);
  const auto known = std::find_if(std::begin(Zooms), std::end(Zooms),
                                  [&](double one) { return std::abs(one - zoom) < 0.001 * (one + 0.01); });
  constexpr int Count = static_cast<int>(std::size(Zooms));
  while (m_zoom->count() > Count) m_zoom->removeItem(Count);
  if (known == std::end(Zooms)) m_zoom->addItem(ZoomText(zoom), zoom);  // as the wheel left it
  m_zoom->setCurrentIndex(static_cast<int>(known - std::begin(Zooms)));
}

}  // namespace tarnwick::view
