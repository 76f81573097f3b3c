#include "formkit/work_progress.h"

#include <QLabel>
#include <QProgressBar>
#include <QVBoxLayout>
#include <algorithm>

#include "formkit/layouts.h"

namespace tarnel {

namespace {

constexpr int kSteps = 10'000;

}  // namespace

WorkProgress::WorkProgress(const char* barName, const QString& caption, QWidget* parent) : QWidget(parent) {
  m_bar = Named(new QProgressBar(this), barName);
  m_bar->setAccessibleName(caption);
  m_bar->setRange(0, kSteps);
  m_bar->setTextVisible(false);
  m_line = Named(new QLabel(this), "Lb_Rate");
  m_line->setTextFormat(Qt::PlainText);
  m_line->setMinimumHeight(m_line->fontMetrics().height());
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins({});
  layout->addWidget(m_bar);
  layout->addWidget(m_line);
}

void WorkProgress::Restart() {
  m_rate.Restart();
  m_bar->setValue(0);
  m_line->clear();
}

void WorkProgress::RestartBar() {
  m_bar->setValue(0);
}

void WorkProgress::Show(Length value, Length maximum) {
  ShowPart(value, maximum, value, maximum);
}

void WorkProgress::ShowPart(Length value, Length maximum, Length done, Length total) {
  ShowBar(maximum > 0 ? static_cast<double>(value) / static_cast<double>(maximum) : 0);
  ShowLine(done, total);
}

void WorkProgress::ShowLine(Length value, Length maximum) {
  const auto line = m_rate.Line(value, maximum, std::chrono::steady_clock::now());
  if (line) m_line->setText(QString::fromStdString(*line));
}

void WorkProgress::ShowCount(std::size_t number, std::size_t count) {
  ShowBar(count > 0 ? static_cast<double>(number) / static_cast<double>(count) : 0);
}

void WorkProgress::ShowBar(double share) {
  m_bar->setValue(std::max(m_bar->value(), static_cast<int>(std::clamp(share, 0.0, 1.0) * kSteps)));
}

}  // namespace tarnel
