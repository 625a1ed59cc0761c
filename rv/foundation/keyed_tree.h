// Sorted trees of objects that have an integer: the library's priority queues.
//
//   class MyTree : public rv::KeyedTree<MyTree> {
//       RV_OBJECT(MyTree)
//   public:
//       int keyOf(RVObject* object) const;
//   };
#pragma once

#include <typeinfo>

#include "rv/foundation/sorted_tree.h"

namespace rv {

// A tree in the order of Tree::keyOf, smallest first. A class derived from Tree may compare in another way.
template <class Tree>
class RV_EXPORT KeyedTree : public RVSortedBinTree {
public:
    int virtualObjectCompare(RVObject* a, RVObject* b) const override {
        const int keyOfA = static_cast<const Tree*>(this)->keyOf(a);
        const int keyOfB = static_cast<const Tree*>(this)->keyOf(b);
        return keyOfA < keyOfB ? -1 : keyOfA > keyOfB ? 1 : 0;
    }

protected:
    bool integerKey(RVObject* object, int& key) const override {
        if (typeid(*this) != typeid(Tree)) return false;
        key = static_cast<const Tree*>(this)->keyOf(object);
        return true;
    }
};

}  // namespace rv
