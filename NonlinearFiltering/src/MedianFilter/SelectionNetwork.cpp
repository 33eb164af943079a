#include "NonlinearFiltering/private/MedianFilter/SelectionNetwork.h"

#include <algorithm>
#include <limits>
#include <map>
#include <optional>
#include <tuple>

namespace qel::nonlinear_filtering {

namespace {

/// The result of a minimum or a maximum, or an input, `lane` voxels further.
struct Wire
{
    unsigned int node;
    long lane;
};

using List = std::vector<Wire>; // ascending

enum class Operation
{
    Input,
    Minimum,
    Maximum
};

struct Node
{
    Operation operation;
    unsigned int first; // nodes; of an input its number
    unsigned int second;
    long secondLane;   // of the second one, from the first one's lane on
    unsigned int twin; // the other result of the same two nodes
};

/// All minima and maxima of an image's rows, each once.
class Graph
{
public:
    std::vector<Node> const& nodes() const { return m_nodes; }

    Wire input(unsigned int number, long lane)
    {
        unsigned int& node = m_inputs.try_emplace(number, noNode).first->second;
        if (node == noNode)
            node = add({Operation::Input, number, 0, 0, 0});
        return {node, lane};
    }

    /// Puts the smaller one first.
    void compare(Wire& a, Wire& b)
    {
        if (std::tie(b.node, b.lane) < std::tie(a.node, a.lane))
            std::swap(a, b); // which of both comes first does not matter
        auto const [found, isNew] = m_pairs.try_emplace({a.node, b.node, b.lane - a.lane}, noNode);
        if (isNew) {
            unsigned int const minimum = add({Operation::Minimum, a.node, b.node, b.lane - a.lane, 0});
            m_nodes[minimum].twin = add({Operation::Maximum, a.node, b.node, b.lane - a.lane, minimum});
            found->second = minimum;
        }
        a = {found->second, a.lane};
        b = {found->second + 1, a.lane};
    }

    /// Batcher's merge by even and odd elements, for lists of any lengths.
    List merge(List const& a, List const& b)
    {
        if (a.empty())
            return b;
        if (b.empty())
            return a;
        if (a.size() == 1 && b.size() == 1) {
            List pair = {a.front(), b.front()};
            compare(pair[0], pair[1]);
            return pair;
        }
        List const even = merge(everySecond(a, 0), everySecond(b, 0));
        List const odd = merge(everySecond(a, 1), everySecond(b, 1));
        List merged = {even.front()};
        for (std::size_t i = 1; i < even.size() || i <= odd.size(); ++i) {
            if (i <= odd.size())
                merged.push_back(odd[i - 1]);
            if (i < even.size())
                merged.push_back(even[i]);
            if (i < even.size() && i <= odd.size())
                compare(merged[merged.size() - 2], merged.back());
        }
        return merged;
    }

    List sort(List const& wires)
    {
        if (wires.size() < 2)
            return wires;
        auto const middle = wires.begin() + static_cast<long>(wires.size() / 2);
        return merge(sort(List(wires.begin(), middle)), sort(List(middle, wires.end())));
    }

    /// The element with index `rank` among both: of all ways to take `rank` + 1 elements from the begins of the lists,
    /// the one whose largest element is the least.
    Wire select(List const& a, List const& b, unsigned long rank)
    {
        std::optional<Wire> least;
        unsigned long const taken = rank + 1;
        for (unsigned long fromA = taken - std::min(taken, b.size()); fromA <= std::min(taken, a.size()); ++fromA) {
            Wire largest = fromA > 0 ? a[fromA - 1] : b[taken - 1];
            if (fromA > 0 && fromA < taken) {
                Wire smaller = b[taken - fromA - 1];
                compare(smaller, largest);
            }
            if (least)
                compare(*least, largest);
            else
                least = largest;
        }
        return *least;
    }

private:
    static constexpr unsigned int noNode = ~0u;

    static List everySecond(List const& list, std::size_t from)
    {
        List chosen;
        for (std::size_t i = from; i < list.size(); i += 2)
            chosen.push_back(list[i]);
        return chosen;
    }

    unsigned int add(Node const& node)
    {
        m_nodes.push_back(node);
        return static_cast<unsigned int>(m_nodes.size() - 1);
    }

    std::vector<Node> m_nodes;
    std::map<unsigned int, unsigned int> m_inputs;
    std::map<std::tuple<unsigned int, unsigned int, long>, unsigned int> m_pairs; // to the minimum
};

/// Lists whose elements are `total` in number, without those of which enough others are certainly smaller or larger.
class Candidates
{
public:
    Candidates(std::vector<List> lists, unsigned long total)
        : m_lists(std::move(lists))
        , m_total(total)
        , m_rank(total / 2)
    {}

    std::vector<List>& lists() { return m_lists; }
    unsigned long rank() const { return m_rank; }

    void drop()
    {
        unsigned long const total = m_total;
        unsigned long const rank = m_rank;
        for (List& list : m_lists) {
            unsigned long const begin = list.size() + rank > total ? list.size() + rank - total : 0;
            unsigned long const end = std::min(list.size(), rank + 1);
            m_total -= list.size() - (end - begin);
            m_rank -= begin;
            list = List(list.begin() + static_cast<long>(begin), list.begin() + static_cast<long>(end));
        }
        std::erase_if(m_lists, [](List const& list) { return list.empty(); });
    }

private:
    std::vector<List> m_lists;
    unsigned long m_total;
    unsigned long m_rank;
};

} // namespace

/// Makes the steps of a graph that leads to the median.
class SelectionNetwork::Builder
{
public:
    Builder(SelectionNetwork& network, std::vector<kernel::Offset3D> const& window)
        : m_network(network)
    {
        std::map<long, List> columns;
        std::map<std::pair<long, long>, unsigned int> inputs; // plan and row
        for (kernel::Offset3D const& offset : window) {
            auto const [input, isNew] =
                inputs.try_emplace({offset.z, offset.y}, static_cast<unsigned int>(inputs.size()));
            if (isNew)
                network.m_inputs.push_back({offset.y, offset.z});
            columns[offset.x].push_back(m_graph.input(input->second, offset.x));
        }
        std::vector<List> lists;
        for (auto const& [x, column] : columns)
            lists.push_back(m_graph.sort(column));
        Wire const median = mergeLists(Candidates(std::move(lists), window.size()));
        findLanes(median);
        makeSteps(median);
    }

private:
    Wire mergeLists(Candidates candidates)
    {
        candidates.drop();
        std::vector<List>& lists = candidates.lists();
        while (lists.size() > 2) {
            // Neighbours of one length: they are likely to be the same lists some columns further.
            std::vector<List> merged;
            for (std::size_t i = 0; i < lists.size(); ++i) {
                if (i + 1 < lists.size()) {
                    merged.push_back(m_graph.merge(lists[i], lists[i + 1]));
                    ++i;
                } else {
                    merged.push_back(lists[i]);
                }
            }
            lists = std::move(merged);
            candidates.drop();
        }
        if (lists.size() == 1)
            return lists.front()[candidates.rank()];
        return m_graph.select(lists[0], lists[1], candidates.rank());
    }

    /// What of each node is needed: a run of lanes around the wanted ones.
    struct Lanes
    {
        long lowest = std::numeric_limits<long>::max();
        long highest = std::numeric_limits<long>::min();
        bool isNeeded() const { return lowest <= highest; }
        void include(long low, long high)
        {
            lowest = std::min(lowest, low);
            highest = std::max(highest, high);
        }
    };

    void findLanes(Wire const& median)
    {
        std::vector<Node> const& nodes = m_graph.nodes();
        m_lanes.resize(nodes.size());
        m_isNeeded.resize(nodes.size());
        m_lanes[median.node].include(median.lane, median.lane);
        m_isNeeded[median.node] = true;
        // Operands come before their results, and twins stand together.
        for (std::size_t i = nodes.size(); i-- > 0;) {
            Node const& node = nodes[i];
            if (node.operation != Operation::Maximum)
                continue; // a twin is handled with its maximum
            Lanes both = m_lanes[i];
            both.include(m_lanes[node.twin].lowest, m_lanes[node.twin].highest);
            if (!both.isNeeded())
                continue;
            m_lanes[i] = m_lanes[node.twin] = both;
            m_lanes[node.first].include(both.lowest, both.highest);
            m_lanes[node.second].include(both.lowest + node.secondLane, both.highest + node.secondLane);
            m_isNeeded[node.first] = m_isNeeded[node.second] = true;
        }
    }

    void makeSteps(Wire const& median)
    {
        std::vector<Node> const& nodes = m_graph.nodes();
        std::vector<unsigned int> order;
        std::vector<bool> isDone(nodes.size());
        std::vector<std::pair<unsigned int, bool>> stack = {{median.node, false}};
        // Operands first, so that results are used soon after they are made.
        while (!stack.empty()) {
            auto const [index, areOperandsDone] = stack.back();
            stack.pop_back();
            Node const& node = nodes[index];
            if (node.operation == Operation::Input || isDone[index])
                continue;
            if (areOperandsDone) {
                isDone[index] = isDone[node.twin] = true;
                order.push_back(index);
            } else {
                stack.push_back({index, true});
                stack.push_back({node.second, false});
                stack.push_back({node.first, false});
            }
        }

        std::vector<std::size_t> lastUse(nodes.size());
        for (std::size_t at = 0; at < order.size(); ++at)
            lastUse[nodes[order[at]].first] = lastUse[nodes[order[at]].second] = at;
        lastUse[median.node] = order.size();

        std::vector<unsigned int> registers(nodes.size());
        for (std::size_t i = 0; i < nodes.size(); ++i)
            if (nodes[i].operation == Operation::Input)
                registers[i] = nodes[i].first;
        std::vector<unsigned int> free;
        unsigned int next = static_cast<unsigned int>(m_network.m_inputs.size());
        auto const take = [&](unsigned int index) {
            if (!m_isNeeded[index])
                return NetworkStep::none;
            if (free.empty())
                free.push_back(next++);
            registers[index] = free.back();
            free.pop_back();
            return registers[index];
        };
        for (std::size_t at = 0; at < order.size(); ++at) {
            Node const& node = nodes[order[at]];
            unsigned int const minimum = node.operation == Operation::Minimum ? order[at] : node.twin;
            Lanes const& lanes = m_lanes[order[at]];
            NetworkStep step;
            step.first = registers[node.first];
            step.second = registers[node.second];
            step.firstLane = lanes.lowest - originOf(node.first);
            step.secondLane = lanes.lowest + node.secondLane - originOf(node.second);
            step.minimum = take(minimum);
            step.maximum = take(minimum + 1);
            step.excess = static_cast<unsigned long>(lanes.highest - lanes.lowest);
            m_network.m_steps.push_back(step);
            m_network.m_excess = std::max(m_network.m_excess, step.excess);
            auto const release = [&](unsigned int operand) {
                if (lastUse[operand] == at && nodes[operand].operation != Operation::Input)
                    free.push_back(registers[operand]);
            };
            release(node.first);
            if (node.second != node.first)
                release(node.second);
        }
        m_network.m_numOfTemporaries = next - m_network.m_inputs.size();
        m_network.m_result = registers[median.node];
        m_network.m_resultLane = median.lane - originOf(median.node);
    }

    /// Which lane of a register stands first in it.
    long originOf(unsigned int node) const
    {
        return m_graph.nodes()[node].operation == Operation::Input ? 0 : m_lanes[node].lowest;
    }

    SelectionNetwork& m_network;
    Graph m_graph;
    std::vector<Lanes> m_lanes;
    std::vector<bool> m_isNeeded;
};

SelectionNetwork::SelectionNetwork(std::vector<kernel::Offset3D> const& window) { Builder(*this, window); }

SelectionNetwork::SelectionNetwork(std::vector<kernel::Offset2D> const& window)
{
    std::vector<kernel::Offset3D> inSpace;
    for (kernel::Offset2D const& offset : window)
        inSpace.push_back({offset.x, offset.y, 0});
    Builder(*this, inSpace);
}

} // namespace qel::nonlinear_filtering
