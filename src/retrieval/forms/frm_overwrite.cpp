#include "retrieval/forms/frm_overwrite.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

#include "base/formats.h"
#include "carrier/format.h"
#include "carrier/stored_text.h"
#include "carrier/tags.h"
#include "formkit/layouts.h"
#include "formkit/text.h"
#include "formkit/type_icons.h"

namespace tarnel {

namespace {

QString SizeText(double bytes) {
  return QObject::tr("%1 KB (%2 bytes)")
      .arg(QString::fromStdString(GroupedKilobytes(bytes)), QString::fromStdString(PlainNumber(bytes)));
}

void AddCell(QGridLayout& grid, int row, int column, const QString& text, const char* name) {
  auto* const label = Named(new QLabel(text), name);
  label->setTextFormat(Qt::PlainText);
  grid.addWidget(label, row, column);
}

}  // namespace

FrmOverwrite::FrmOverwrite(const Question& question, const FileStat& existing, const MirrorRow& hidden,
                           QWidget* parent)
    : QDialog(parent) {
  setObjectName(QStringLiteral("FrmOverwrite"));
  setWindowTitle(BoxText(question.title));
  setAccessibleDescription(BoxText(question.text));
  const int side = style()->pixelMetric(QStyle::PM_LargeIconSize, nullptr, this);
  auto* const picture = Named(new QLabel, "Picture1");
  picture->setPixmap(IconOfName(ToPlatform(hidden.Name())).pixmap(QSize(side, side), devicePixelRatioF()));
  auto* const upper = new QGridLayout;
  upper->addWidget(picture, 0, 0, Qt::AlignTop);
  upper->addWidget(MakeMessage(question), 0, 1);
  upper->addLayout(MakeComparison(existing, hidden), 1, 1);
  upper->setColumnStretch(1, 1);
  upper->setRowStretch(0, 1);
  auto* const layout = new QVBoxLayout(this);
  layout->addLayout(upper, 1);
  layout->addSpacing(fontMetrics().lineSpacing());
  layout->addLayout(MakeButtons());
  m_no->setDefault(true);  // now that it belongs to the dialog
  m_no->setFocus();
}

/// A path has no end: it wraps anywhere, scrolls and can be copied.
QWidget* FrmOverwrite::MakeMessage(const Question& question) {
  auto* const message = Named(new QPlainTextEdit(BoxText(question.text)), "Txt_Msg");
  message->setReadOnly(true);
  message->setTabChangesFocus(true);
  message->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  message->setAccessibleName(tr("Message"));
  message->setFrameShape(QFrame::NoFrame);
  message->viewport()->setAutoFillBackground(false);
  message->document()->setDocumentMargin(0);
  message->setMinimumSize(fontMetrics().averageCharWidth() * 56, fontMetrics().lineSpacing() * 5);
  message->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Ignored);
  return message;
}

QGridLayout* FrmOverwrite::MakeComparison(const FileStat& existing, const MirrorRow& hidden) {
  auto* const grid = new QGridLayout;
  grid->setHorizontalSpacing(fontMetrics().averageCharWidth() * 3);
  AddCell(*grid, 0, 1, tr("Existing file"), "Lb_Existing");
  AddCell(*grid, 0, 2, tr("Hidden file"), "Lb_Hidden");
  AddCell(*grid, 1, 0, tr("Size:"), "Lb_Size");
  AddCell(*grid, 1, 1, SizeText(static_cast<double>(existing.size)), "Lb_ExistingSize");
  AddCell(*grid, 1, 2, SizeText(ReadNumber(hidden.Field(tag::kPlainSize))), "Lb_HiddenSize");
  AddCell(*grid, 2, 0, tr("Date:"), "Lb_Date");
  AddCell(*grid, 2, 1, tr("changed %1").arg(QString::fromStdString(DateAndTime(existing.modified))),
          "Lb_ExistingDate");
  AddCell(*grid, 2, 2, tr("hidden %1").arg(ShownText(hidden.Field(tag::kDate))), "Lb_HiddenDate");
  for (const int column : {1, 2}) {
    QWidget* const head = grid->itemAtPosition(0, column)->widget();
    QFont bold = head->font();
    bold.setBold(true);
    head->setFont(bold);
  }
  grid->setColumnStretch(3, 1);
  return grid;
}

QHBoxLayout* FrmOverwrite::MakeButtons() {
  auto* const buttons = new QHBoxLayout;
  m_no = AnswerButton(tr("&No"), "Cmd_no", Answer::No);
  buttons->addStretch();
  buttons->addWidget(AnswerButton(tr("&Yes"), "Cmd_Yes", Answer::Yes));
  buttons->addWidget(m_no);
  buttons->addWidget(AnswerButton(tr("&Overwrite All"), "Cmd_all", Answer::OverwriteAll));
  return buttons;
}

QPushButton* FrmOverwrite::AnswerButton(const QString& caption, const char* name, Answer answer) {
  auto* const button = Named(new QPushButton(caption), name);
  connect(button, &QPushButton::clicked, this, [this, answer] {
    m_answer = answer;
    accept();
  });
  return button;
}

Answer FrmOverwrite::Ask() {
  exec();
  return m_answer;
}

}  // namespace tarnel
