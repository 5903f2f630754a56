#include "ui/drive/answer_queue.h"

#include <utility>

namespace kw::ui::drive {

void AnswerQueue::Add(Queued kind, std::string text) {
  levels_.back()[static_cast<size_t>(kind)].push_back(std::move(text));
}

std::optional<std::string> AnswerQueue::Take(Queued kind) {
  for (auto level = levels_.rbegin(); level != levels_.rend(); ++level) {
    auto& queue = (*level)[static_cast<size_t>(kind)];
    if (queue.empty()) continue;
    std::string text = std::move(queue.front());
    queue.pop_front();
    return text;
  }
  return std::nullopt;
}

void AnswerQueue::OpenLevel() { levels_.emplace_back(); }

void AnswerQueue::CloseLevel() {
  Level inner = std::move(levels_.back());
  levels_.pop_back();
  for (size_t kind = 0; kind < inner.size(); ++kind) {
    auto& outer = levels_.back()[kind];
    outer.insert(outer.begin(), inner[kind].begin(), inner[kind].end());
  }
}

void AnswerQueue::DropInnermost() { levels_.back() = Level(); }

}  // namespace kw::ui::drive
