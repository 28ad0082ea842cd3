// The place where the service a process uses is installed: the platform's own
// until something else is put in, e.g. a recording fake in a test.
#pragma once

namespace platform {

template <class Service>
class ServiceSlot {
  public:
    // The installed service, else own.
    Service& Current(Service& own) const { return installed_ != nullptr ? *installed_ : own; }
    // nullptr restores the platform's own. The caller keeps ownership.
    void Install(Service* service) { installed_ = service; }

  private:
    Service* installed_ = nullptr;
};

}  // namespace platform
