#ifndef KITWRIGHT_TESTS_SCREEN_SCRIPT_PLAYER_H_
#define KITWRIGHT_TESTS_SCREEN_SCRIPT_PLAYER_H_

#include <string>
#include <vector>

namespace kw::screen {

/// The title of boxes that have none of their own.
inline constexpr const char* kProgramTitle = "Kitwright";

/// A message or question on the screen.
struct Box {
  std::string title;
  std::string words;
  std::vector<std::string> buttons;
  std::string usual;  ///< the button that has the focus
};

/// Plays a script of the driver's on real windows: carries out its commands one by one, waits after each
/// until the program waits for a person, and prints what comes on the screen meanwhile in the words of the
/// driver's transcript. Of the driver's commands it knows: click, type, node, menu, answer, print, say, and
/// set in front of all others. What the windows are and how a hand reaches them is for a class of the
/// system's.
class ScriptPlayer {
 public:
  /// The program waits for a person when it shows the same in so many looks, 50 ms apart.
  explicit ScriptPlayer(int calm_looks) : calm_looks_(calm_looks) {}
  virtual ~ScriptPlayer() = default;

  /// Plays the script's lines to the end of the program and gives its exit code. Throws std::runtime_error
  /// when something to act on is not there, or the program does not come to rest.
  int Play(const std::vector<std::string>& script);

 protected:
  virtual void SetVariable(const std::string& name, const std::string& value) = 0;
  /// Starts the program.
  virtual void Start() = 0;
  /// True once the program has ended.
  virtual bool HasEnded() = 0;
  /// The exit code of a program that has ended.
  virtual int ExitCode() = 0;
  virtual void Kill() = 0;

  virtual void Click(const std::string& control) = 0;
  virtual void Type(const std::string& control, const std::string& text) = 0;
  virtual void ClickNode(const std::string& control, const std::string& text) = 0;
  virtual void Print(const std::string& name) = 0;

  /// Reads the screen anew; the next three work on what it saw.
  virtual void Look() {}
  /// Tells of a message or question and answers it, or chooses in a pop-up menu; False when there is none.
  virtual bool TakeBox() = 0;
  virtual bool TakeMenu() = 0;
  /// Tells of a page or dialog that is new on the screen. Answers with what shows now; "" while it is busy.
  virtual std::string TellForms() = 0;

  /// Prints the line of a box. The number of the button to press, by the next answer that the script queued.
  size_t TellBox(const Box& box);
  /// What the script queued for the next menu; "dismiss" when nothing is.
  std::string NextMenuChoice();
  bool ExpectsMenu() const { return !menus_.empty(); }

 private:
  void Do(const std::string& word, const std::string& rest);
  void Settle();
  bool Ended();
  int End();

  int calm_looks_;
  bool started_ = false;
  bool end_told_ = false;
  std::vector<std::string> answers_;
  std::vector<std::string> menus_;
};

void Pause(int milliseconds);

/// In one line, without the ends of lines that the width of a window makes.
std::string OneLine(const std::string& text);

/// The lines of a file, without the ends that either system gives them. Throws std::runtime_error.
std::vector<std::string> ReadLines(const char* file);

}  // namespace kw::screen

#endif  // KITWRIGHT_TESTS_SCREEN_SCRIPT_PLAYER_H_
