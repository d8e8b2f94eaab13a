#pragma once

#include <QHash>
#include <QObject>
#include <QSet>
#include <QString>

namespace halvane {

// Fills wanted (names mapped to null) with the children of root of type T that
// carry those names, in one pass over the tree rather than one search of the
// whole tree per name. A name that two children carry keeps the first and is
// put into shared, so that the caller can search for it as it did before.
template <typename T, typename Holder>
void findNamedChildren(const QObject& root, QHash<QString, Holder>& wanted, QSet<QString>& shared) {
    for (T* child : root.findChildren<T*>()) {
        const auto found = wanted.find(child->objectName());
        if (found == wanted.end())
            continue;
        if (*found)
            shared.insert(found.key());
        else
            *found = child;
    }
}

} // namespace halvane
