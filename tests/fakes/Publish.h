#pragma once

#include "ambient/CalmIntensity.h"
#include "base/Animated.h"
#include "base/Published.h"

#include <type_traits>
#include <utility>

namespace vorli {

class PublisherForTests {
 public:
  template <typename Target, typename T>
  static void publish(Target& target, T value) {
    target = std::move(value);
  }
};

namespace fakes {

/// Sets a published value in place of its owner.
template <typename T, typename Owner>
void publish(Published<T, Owner>& published, std::type_identity_t<T> value) {
  PublisherForTests::publish(published, std::move(value));
}

/// Sets a published animated value in place of its owner.
template <typename T, typename Owner>
void publish(PublishedAnimated<T, Owner>& published, std::type_identity_t<T> value) {
  PublisherForTests::publish(published, std::move(value));
}

/// Holds the calm at `value`.
inline void publish(CalmIntensity& calm, double value) {
  PublisherForTests::publish(calm, value);
}

}  // namespace fakes
}  // namespace vorli
