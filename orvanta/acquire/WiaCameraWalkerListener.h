#pragma once
// WiaCameraWalkerListener: told of each picture or video a WiaCameraWalker finds on a camera.

namespace Orvanta {

class WiaCameraItem;

class WiaCameraWalkerListener {
public:
    virtual ~WiaCameraWalkerListener() = default;
    // The item lives for the call only. False ends the walk.
    virtual bool onItem(WiaCameraItem* item) = 0;
};

}  // namespace Orvanta
