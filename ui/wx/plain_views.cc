#include <wx/dcclient.h>
#include <wx/statbmp.h>
#include <wx/statbox.h>
#include <wx/statline.h>
#include <wx/stattext.h>

#include <algorithm>

#include "ui/wx/art.h"
#include "ui/wx/form_view.h"
#include "ui/wx/label_text.h"
#include "ui/wx/picture_panel.h"
#include "ui/wx/wx_text.h"

namespace kw::ui {

namespace {

// The band and the side have the same colours in every theme; the words on them are light.
const wxColour kBandColour(0x14, 0x39, 0x4f);
const wxColour kSideColour(0x1b, 0x5a, 0x70);
const wxColour kBandTitle(0xff, 0xff, 0xff);
const wxColour kBandText(0xd5, 0xe6, 0xec);

class LabelView : public ControlView, public WrappingView {
 public:
  LabelView(FormView& form, Label& label, wxWindow* parent)
      : ControlView(form, label),
        label_(label),
        text_(new wxStaticText(parent, wxID_ANY, ToWxLines(label.Text()), wxDefaultPosition, wxDefaultSize,
                               wxST_NO_AUTORESIZE)) {
    in_band_ = dynamic_cast<PicturePanel*>(parent) != nullptr;
    if (in_band_) text_->SetForegroundColour(label.emphasized ? kBandTitle : kBandText);
    LabelView::UseFont(text_->GetFont());
  }

  void UseFont(const wxFont& font) override {
    wxFont own = font;
    if (label_.emphasized) {
      own.MakeBold();
      if (in_band_) own.Scale(1.35F);
    }
    text_->SetFont(own);
    Measure();
  }

  wxWindow* Window() const override { return text_; }

  void AllowWrap(int least) override {
    least_ = least;
    Measure();
  }

  bool Rewrap() override {
    if (least_ <= 0) return false;
    const int before = text_->GetMinSize().y;
    const wxString broken = WrapText(*text_, ToWxLines(label_.Text()), text_->GetSize().x);
    if (text_->GetLabel() != broken) text_->SetLabel(broken);
    Measure();
    return text_->GetMinSize().y != before;
  }

 protected:
  void ApplyOwn(Changes changes) override {
    if (!changes.Has(Change::kText)) return;
    const wxString plain = ToWxLines(label_.Text());
    const int width = text_->GetSize().x;
    text_->SetLabel(least_ > 0 && width > 1 ? WrapText(*text_, plain, width) : plain);
    Measure();
  }

 private:
  /// The room to ask for: the natural width, or the least one where the text may be broken, and the height
  /// of the text as it is broken now. (The widget's own best size is late to learn of a new font.)
  void Measure() {
    const int natural = TextExtent(*text_, ToWxLines(label_.Text())).x;
    const int height = TextExtent(*text_, text_->GetLabel()).y;
    text_->SetMinSize(wxSize(least_ > 0 ? std::min(natural, least_) : natural, height));
  }

  Label& label_;
  wxStaticText* text_;
  bool in_band_ = false;
  int least_ = 0;
};

class FrameView : public ControlView {
 public:
  FrameView(FormView& form, Frame& frame, wxWindow* parent)
      : ControlView(form, frame),
        frame_(frame),
        box_(new wxStaticBox(parent, wxID_ANY, ToWx(frame.Text()))) {}

  wxWindow* Window() const override { return box_; }

 protected:
  void ApplyOwn(Changes) override {
    if (box_->GetLabel() != ToWx(frame_.Text())) box_->SetLabel(ToWx(frame_.Text()));
  }

 private:
  Frame& frame_;
  wxStaticBox* box_;
};

class ImageView : public ControlView {
 public:
  ImageView(FormView& form, Image& image, wxWindow* parent) : ControlView(form, image) {
    if (image.Text() == "TITLEBITMAP") {
      window_ = new PicturePanel(parent, PictureBundle(image.Text(), wxSize(640, 80)), kBandColour,
                                 PicturePanel::Anchor::kRight);
    } else if (image.Text() == "WELCOME") {
      window_ = new PicturePanel(parent, PictureBundle(image.Text(), wxSize(200, 360)), kSideColour,
                                 PicturePanel::Anchor::kFoot);
      window_->SetMinSize(ScaledSize(*window_, wxSize(200, 360)));
    } else {
      window_ = new wxStaticBitmap(parent, wxID_ANY,
                                   PictureBundle(image.Text(), ScaledSize(*parent, wxSize(44, 44))));
    }
  }

  wxWindow* Window() const override { return window_; }
  void UseFont(const wxFont&) override {}

 protected:
  void ApplyOwn(Changes) override {}

 private:
  wxWindow* window_;
};

class LineView : public ControlView {
 public:
  LineView(FormView& form, Line& line, wxWindow* parent)
      : ControlView(form, line), line_(new wxStaticLine(parent, wxID_ANY)) {}

  wxWindow* Window() const override { return line_; }
  void UseFont(const wxFont&) override {}

 protected:
  void ApplyOwn(Changes) override {}

 private:
  wxStaticLine* line_;
};

}  // namespace

std::unique_ptr<ControlView> MakeLabelView(FormView& form, Label& label, wxWindow* parent) {
  return std::make_unique<LabelView>(form, label, parent);
}

std::unique_ptr<ControlView> MakeFrameView(FormView& form, Frame& frame, wxWindow* parent) {
  return std::make_unique<FrameView>(form, frame, parent);
}

std::unique_ptr<ControlView> MakeImageView(FormView& form, Image& image, wxWindow* parent) {
  return std::make_unique<ImageView>(form, image, parent);
}

std::unique_ptr<ControlView> MakeLineView(FormView& form, Line& line, wxWindow* parent) {
  return std::make_unique<LineView>(form, line, parent);
}

}  // namespace kw::ui
