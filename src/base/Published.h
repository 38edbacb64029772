#pragma once

#include "base/Observable.h"

#include <utility>

namespace vorli {

/// An observable that only `Owner` can assign to.
template <typename T, typename Owner>
class Published : public Observable<T> {
 public:
  Published() = default;
  explicit Published(T value) : Observable<T>(std::move(value)) {}

 private:
  friend Owner;
  friend class PublisherForTests;

  Published& operator=(T value) {
    this->assign(std::move(value));
    return *this;
  }
};

}  // namespace vorli
