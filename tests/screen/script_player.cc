#include "tests/screen/script_player.h"

#include <algorithm>
#include <chrono>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <thread>

namespace kw::screen {
namespace {

constexpr int kPatienceSeconds = 60;
constexpr int kTurnMilliseconds = 50;
constexpr int kPatienceTurns = kPatienceSeconds * 1000 / kTurnMilliseconds;

std::string Taken(std::vector<std::string>& queue) {
  const std::string first = queue.front();
  queue.erase(queue.begin());
  return first;
}

/// Splits at the first blank.
std::pair<std::string, std::string> FirstWord(const std::string& line) {
  const size_t blank = line.find(' ');
  return {line.substr(0, blank), blank == std::string::npos ? "" : line.substr(blank + 1)};
}

}  // namespace

int ScriptPlayer::Play(const std::vector<std::string>& script) {
  for (const std::string& line : script) {
    if (line.empty() || line.front() == '#') continue;
    const auto [word, rest] = FirstWord(line);
    if (word == "set") {
      if (started_) throw std::runtime_error("set comes too late: " + line);
      const size_t sign = rest.find('=');
      SetVariable(rest.substr(0, sign), rest.substr(sign + 1));
      continue;
    }
    if (!started_) {
      started_ = true;
      Start();
      Settle();
    }
    Do(word, rest);
  }
  return End();
}

void ScriptPlayer::Do(const std::string& word, const std::string& rest) {
  const auto [target, text] = FirstWord(rest);
  if (word == "answer") {
    answers_.push_back(rest);
  } else if (word == "menu") {
    menus_.push_back(rest);
  } else if (word == "say") {
    std::cout << "say " << rest << std::endl;
  } else if (word == "print") {
    Print(target);
  } else if (word == "click") {
    Click(target);
    Settle();
  } else if (word == "type") {
    Type(target, text);
    Settle();
  } else if (word == "node") {
    ClickNode(target, text);
    Settle();
  } else {
    throw std::runtime_error("this player does not know the command " + word);
  }
}

/// Waits until the program waits for a person, and tells what came on the screen meanwhile.
void ScriptPlayer::Settle() {
  int calm = 0;
  std::string before;
  for (int i = 0; i < kPatienceTurns; ++i) {
    if (Ended()) return;
    Look();
    if (TakeMenu() || TakeBox()) {
      calm = 0;
      continue;
    }
    const std::string now = TellForms();
    calm = now == before && !now.empty() ? calm + 1 : 0;
    before = now;
    if (calm >= calm_looks_) {
      menus_.clear();
      answers_.clear();
      return;
    }
    Pause(kTurnMilliseconds);
  }
  throw std::runtime_error("the program does not come to rest");
}

bool ScriptPlayer::Ended() {
  if (!end_told_ && HasEnded()) {
    end_told_ = true;
    std::cout << "end" << std::endl;
  }
  return end_told_;
}

/// The exit code of the program, which has to end by itself.
int ScriptPlayer::End() {
  for (int i = 0; i < kPatienceTurns && !Ended(); ++i) Pause(kTurnMilliseconds);
  if (Ended()) return ExitCode();
  std::cout << "the program goes on" << std::endl;
  Kill();
  return 1;
}

size_t ScriptPlayer::TellBox(const Box& box) {
  std::string kind = box.buttons.size() == 1 ? "message" : "question";
  if (box.title != kProgramTitle) kind += "(" + box.title + ")";
  std::cout << kind << " " << box.words;
  size_t chosen = 0;
  if (box.buttons.size() > 1) {
    const std::string wanted = answers_.empty() ? box.buttons.front() : Taken(answers_);
    std::string names;
    for (size_t i = 0; i < box.buttons.size(); ++i) {
      names += (names.empty() ? "" : "|") + box.buttons[i];
      if (box.buttons[i] == wanted) chosen = i;
    }
    std::cout << " [" << names << "] default=" << box.usual << " -> " << box.buttons[chosen];
  }
  std::cout << std::endl;
  return chosen;
}

std::string ScriptPlayer::NextMenuChoice() { return menus_.empty() ? "dismiss" : Taken(menus_); }

void Pause(int milliseconds) { std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds)); }

std::string OneLine(const std::string& text) {
  std::string line = text;
  std::replace(line.begin(), line.end(), '\n', ' ');
  std::replace(line.begin(), line.end(), '\r', ' ');
  return line;
}

std::vector<std::string> ReadLines(const char* file) {
  std::ifstream stream(file);
  if (!stream) throw std::runtime_error(std::string("cannot read ") + file);
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) {
    while (!line.empty() && line.back() == '\r') line.pop_back();
    lines.push_back(line);
  }
  return lines;
}

}  // namespace kw::screen
