#include <QLabel>
#include <QVBoxLayout>

#include "controls/html_static.h"
#include "controls/hyperlink.h"
#include "platform/dialog.h"
#include "screenshots/subject.h"

namespace tarnwick::screenshots {

namespace {

using controls::CXHTMLStatic;
using controls::CXHyperLink;

// Each shows one thing that markup can do.
const char* const Texts[] = {
    "Plain text, <b>bold</b>, <i>italic</i>, <u>underlined</u>, <strike>struck out</strike> and <b><i><u>all "
    "three</u></i></b>.",
    "Water is H<sub>2</sub>O and a square has x<sup>2</sup> units.",
    "<big><big><big>Larger</big></big></big> and <small><small>smaller</small></small>, "
    "<code>studiomdl -game hl2</code> in between.",
    "<font size=\"6\">Six pixels more</font> and back, <font color=\"DarkRed\">dark red</font>, "
    "<font color=\"Navy\" bgcolor=\"LightYellow\"> navy on yellow </font>.",
    "5 &lt; 6 &amp; 7 &gt; 6, &copy; &reg; &trade; &euro; &pound; &para; &bull; &iquest; &quot;x&quot;",
    "Above a rule<hr>and below it<hr size=4>and below a thick one.",
    "A longer text that is broken between its words where the window ends, with <u><font color=\"#0000ff\"><a "
    "href=http://x.example/physics.htm>a link that is long enough to be broken as well, so that it takes two "
    "lines</a></font></u>, and goes on behind it.",
    "An unfinished tag shows as text: <font color=\"red\"",
};

CXHyperLink* MakeLink(const QString& text, CXHyperLink::UnderlineMode mode, bool visited) {
  auto* link = new CXHyperLink;
  link->SetWindowText(text);
  link->SetUrl("http://x.example/");
  link->SetUnderline(mode);
  link->SetVisited(visited);
  return link;
}

std::unique_ptr<QWidget> RichText(Stage& stage) {
  auto dialog = std::make_unique<platform::CDialog>(stage.Desktop);
  auto* rows = new QVBoxLayout(dialog.get());
  for (const char* text : Texts) {
    auto* control = new CXHTMLStatic;
    control->SetWindowText(text);
    rows->addWidget(control);
  }
  auto* boxed = new CXHTMLStatic;
  boxed->setFrameShape(QFrame::Box);
  boxed->SetWindowText("<a href=http://x.example/>A link</a> on a background of its own, in a frame");
  boxed->SetBkColor("Ivory");
  boxed->SetTextColor("DarkSlateGray");
  rows->addWidget(boxed);
  rows->addWidget(new QLabel("An ordinary label, for comparison."));
  rows->addWidget(MakeLink("A link under the mouse only underlined", CXHyperLink::UnderlineHover, false));
  rows->addWidget(MakeLink("An underlined link", CXHyperLink::UnderlineAlways, false));
  rows->addWidget(MakeLink("A visited link", CXHyperLink::UnderlineAlways, true));
  CXHyperLink* disabled = MakeLink("A link that cannot be used", CXHyperLink::UnderlineAlways, false);
  disabled->setEnabled(false);
  rows->addWidget(disabled);
  dialog->resize(460, dialog->layout()->totalHeightForWidth(460));
  dialog->Create();
  return dialog;
}

}  // namespace

std::vector<Subject> ControlsSubjects() {
  return {{"rich-text", RichText}};
}

}  // namespace tarnwick::screenshots
