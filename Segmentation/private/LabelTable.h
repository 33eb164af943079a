#pragma once

#include <type_traits>
#include <vector>

namespace qel::segmentation {

/// The labels of one block, and which of them were found to be equal.
///
/// Labels are of type L and wrap around in it. The table has an entry for each label that was made: so whatever label
/// there is, and wherever its type has wrapped to, its entry exists. A link reaches one level: linking a label rewrites
/// the entry of its parent, and no other. That keeps some equal labels apart, on purpose; no entry is followed further
/// here.
template <class L> class LabelTable
{
public:
    /// 0 where the type has wrapped just there.
    L create()
    {
        m_parents.push_back(0);
        return m_last = static_cast<L>(static_cast<std::make_unsigned_t<L>>(m_last) + 1u);
    }

    /// The label of a foreground voxel with these labels to the left, above left, above and above right: a new one if
    /// there is none. From then on all of them have that label for a parent.
    L labelFor(L w, L nw, L n, L ne)
    {
        L m = w;
        if (nw != 0) {
            L const parent = parentOf(nw);
            if (w == 0 || parent < w)
                m = parent;
        } else if (w == 0 && n == 0 && ne == 0) {
            return create();
        }
        if (n != 0) {
            L const parent = parentOf(n);
            if (parent < m || m == 0)
                m = parent;
        }
        if (ne != 0) {
            L const parent = parentOf(ne);
            if (parent < m || m == 0)
                m = parent;
        }
        if (w != 0 && w != m)
            link(w, m);
        if (nw != 0 && nw != m && nw != w)
            link(nw, m);
        if (n != 0 && n != m && n != w && n != nw)
            link(n, m);
        if (ne != 0 && ne != m && ne != w && ne != nw && ne != n)
            link(ne, m);
        return m;
    }

    /// The same where there is one label among the four, and none to the left: the table stays as it is.
    L labelFor(L neighbour) const { return parentOf(neighbour); }

    /// Where labels have wrapped, links may lead round in a circle, which has no end to be walked to. Such a circle
    /// gets a root, its first label.
    void cutCircles()
    {
        std::size_t const size = m_parents.size();
        std::size_t up = 0;
        while (up < size && (m_parents[up] == 0 || placeOf(m_parents[up]) < up))
            ++up;
        if (up == size)
            return; // Links that all lead down lead to an end.
        std::vector<std::size_t> walkOf(size, 0);
        for (std::size_t start = 0; start < size; ++start) {
            std::size_t at = start;
            while (walkOf[at] == 0) {
                walkOf[at] = start + 1;
                if (m_parents[at] == 0)
                    break;
                at = placeOf(m_parents[at]);
            }
            if (m_parents[at] == 0 || walkOf[at] != start + 1)
                continue;
            std::size_t first = at;
            for (std::size_t next = placeOf(m_parents[at]); next != at; next = placeOf(m_parents[next]))
                first = next < first ? next : first;
            m_parents[first] = 0;
        }
    }

    /// The parent of label k, or 0, at k - 1.
    std::vector<L> const& getParents() const { return m_parents; }

    /// Where the table has the entry of a label other than 0.
    static std::size_t placeOf(L label) { return static_cast<std::make_unsigned_t<L>>(label) - std::size_t(1); }

private:
    L parentOf(L label) const
    {
        L const parent = m_parents[placeOf(label)];
        return parent != 0 ? parent : label;
    }

    void link(L label, L target)
    {
        L const parent = m_parents[placeOf(label)];
        if (parent != 0 && parent != target)
            m_parents[placeOf(parent)] = target;
        m_parents[placeOf(label)] = target;
    }

    std::vector<L> m_parents;
    L m_last = 0;
};

} // namespace qel::segmentation
