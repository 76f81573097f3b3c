#include "app/refresh.h"

#include <initializer_list>

namespace tarnel {

namespace {

void Disable(RefreshResult& result, std::initializer_list<CommandId> commands) {
  for (const CommandId id : commands)
    result.enabled.reset(static_cast<std::size_t>(id));
}

}  // namespace

RefreshResult Refresh(const RefreshInput& input) {
  RefreshResult result;
  result.enabled.set();
  result.isInfoPanelOn = input.hasNodes;
  if (input.ReadingBusy) {
    Disable(result, {CommandId::New, CommandId::Open, CommandId::Search, CommandId::Hide});
  }
  if (!input.hasNodes) {
    Disable(result,
            {CommandId::SaveAs, CommandId::Close, CommandId::CarrierProperties, CommandId::MailCarrier});
  }
  const bool canUseRows = input.hasRows && !input.ReadingBusy;
  if (!canUseRows) {
    Disable(result, {CommandId::Extract, CommandId::Delete, CommandId::SelectAll, CommandId::InvertSelection,
                     CommandId::Password, CommandId::FileProperties});
  }
  if (!canUseRows || !input.listHasAttention || !input.isFileRowSelected) {
    Disable(result, {CommandId::View});
  }
  return result;
}

}  // namespace tarnel
