#pragma once

#include "foundation/mat/TransformStruct.h"

/// A variable's transform, owned by the engine.
class Transforms : public TransformStruct {
  public:
    explicit Transforms(const TransformStruct& transform) : TransformStruct(transform) {}
    ~Transforms() override = default;
};
