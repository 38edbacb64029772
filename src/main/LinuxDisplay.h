#pragma once

namespace vorli {

/// Makes a Qt that starts during its lifetime use X11 where there is any, XWayland included: placing the
/// popover and watching for clicks outside of it need it. Other programs that this one starts later make
/// their own choice.
class X11Preference {
 public:
  X11Preference();
  ~X11Preference();
  X11Preference(const X11Preference&) = delete;
  X11Preference& operator=(const X11Preference&) = delete;

 private:
  bool isSet_ = false;
};

/// True when Qt will find a display. Without one it would abort with a core dump.
bool hasDisplay();

}  // namespace vorli
