#ifndef QEL_TESTS_SPATIAL_REFERENCESEARCH_H
#define QEL_TESTS_SPATIAL_REFERENCESEARCH_H

// The reference implementation of QuadtreeBucket: points are inserted one after the other, full
// leaves split, and the nodes that are left to search wait in a sorted queue.

#include <algorithm>
#include <cstddef>
#include <deque>
#include <limits>
#include <utility>
#include <vector>

#include <qel/QuadtreeObject.h>
#include <qel/QuadtreeQuad.h>
#include <qel/TripletBase.h>

namespace qel_test {

class ReferenceSearch {
public:
    using Point = qel::TripletBase<float>;
    using Quad = qel::QuadtreeQuad;
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    ReferenceSearch(const std::vector<Point>& points, int maxDepth, int capacity)
        : maxDepth_(maxDepth), capacity_(capacity) {
        makeRoot(points);
        for (std::size_t i = 0; i < points.size(); ++i) {
            objects_.emplace_back(points[i], i);
        }
        for (const auto& object : objects_) {
            insert(object);
        }
        numberNodes();
    }

    // The index of the nearest point, or kNone.
    std::size_t find(const Point& p) {
        qx_ = p.x;
        qy_ = p.y;
        best_ = std::numeric_limits<float>::max();
        bestObject_ = nullptr;
        queue_.clear();
        const Quad& root = *root_;
        if ((qx_ >= root.xmin || root.xmax > qx_) && (qy_ >= root.ymin || root.ymax > qy_)) {
            startAtLeaf();
        } else {
            queue_.emplace_back(distanceToQuad(root_), root_);
            traverse();
        }
        return bestObject_ == nullptr ? kNone : static_cast<std::size_t>(bestObject_->index);
    }

    float bestDistance() const { return best_; }
    const Quad& root() const { return *root_; }
    int maxDepthReached() const { return maxDepthReached_; }

    // The leaves with points, low halves first.
    std::vector<const Quad*> filledLeaves() const {
        std::vector<const Quad*> leaves;
        for (const Node* node : preorder_) {
            if (node->splitType == Quad::leaf && !node->objects.empty()) {
                leaves.push_back(node);
            }
        }
        return leaves;
    }

private:
    struct Node : Quad {
        std::size_t number = 0; // the identity that orders nodes at equal distance
    };
    using Entry = std::pair<float, Quad*>;

    // -- Building ----

    Quad* newNode(float xmin, float ymin, float xmax, float ymax, int depth, Quad* parent) {
        nodes_.emplace_back();
        Node& node = nodes_.back();
        node.xmin = xmin;
        node.ymin = ymin;
        node.xmax = xmax;
        node.ymax = ymax;
        node.depth = depth;
        node.parent = parent;
        maxDepthReached_ = std::max(maxDepthReached_, depth);
        return &node;
    }

    static float margin(float low, float high) {
        const float difference = high - low;
        return static_cast<float>(static_cast<double>(difference) * static_cast<double>(0.1f));
    }

    void makeRoot(const std::vector<Point>& points) {
        float minX = points[0].x, maxX = points[0].x, minY = points[0].y, maxY = points[0].y;
        for (const Point& p : points) {
            if (p.x < minX)
                minX = p.x;
            if (p.x > maxX)
                maxX = p.x;
            if (p.y < minY)
                minY = p.y;
            if (p.y > maxY)
                maxY = p.y;
        }
        const float mx = margin(minX, maxX), my = margin(minY, maxY);
        root_ = newNode(minX - mx, minY - my, maxX + mx, maxY + my, 0, nullptr);
    }

    static Quad* choose(const Quad* node, float x, float y) {
        if (node->splitType == Quad::splitAcrossX) {
            return x >= node->highChild->xmin ? node->highChild : node->lowChild;
        }
        return y >= node->highChild->ymin ? node->highChild : node->lowChild;
    }

    static Quad* locate(Quad* start, float x, float y) {
        while (start->splitType != Quad::leaf) {
            start = choose(start, x, y);
        }
        return start;
    }

    void insert(const qel::QuadtreeObject& object) {
        Quad* leaf = split(locate(root_, object.point.x, object.point.y), object);
        leaf->objects.push_back(&object);
    }

    Quad* split(Quad* node, const qel::QuadtreeObject& object) {
        if (node->depth == maxDepth_) {
            return node;
        }
        for (;;) {
            if (static_cast<long long>(node->objects.size()) < capacity_) {
                return node;
            }
            cutInTwo(node);
            node = choose(node, object.point.x, object.point.y);
            if (node->depth == maxDepth_) {
                return node;
            }
        }
    }

    void cutInTwo(Quad* n) {
        const float sumX = n->xmin + n->xmax, sumY = n->ymin + n->ymax;
        const float midX = static_cast<float>(static_cast<double>(sumX) * 0.5);
        const float midY = static_cast<float>(static_cast<double>(sumY) * 0.5);
        const bool acrossY = n->parent != nullptr && n->parent->splitType != Quad::splitAcrossY;
        if (acrossY) {
            n->lowChild = newNode(n->xmin, n->ymin, n->xmax, midY, n->depth + 1, n);
            n->highChild = newNode(n->xmin, midY, n->xmax, n->ymax, n->depth + 1, n);
        } else {
            n->lowChild = newNode(n->xmin, n->ymin, midX, n->ymax, n->depth + 1, n);
            n->highChild = newNode(midX, n->ymin, n->xmax, n->ymax, n->depth + 1, n);
        }
        n->splitType = acrossY ? Quad::splitAcrossY : Quad::splitAcrossX;
        for (const qel::QuadtreeObject* o : n->objects) {
            const bool high = acrossY ? o->point.y >= midY : o->point.x >= midX;
            (high ? n->highChild : n->lowChild)->objects.push_back(o);
        }
        n->objects.clear();
    }

    void numberNodes() {
        std::vector<Quad*> pending{root_};
        while (!pending.empty()) {
            Quad* node = pending.back();
            pending.pop_back();
            static_cast<Node*>(node)->number = preorder_.size();
            preorder_.push_back(static_cast<Node*>(node));
            if (node->splitType != Quad::leaf) {
                pending.push_back(node->highChild);
                pending.push_back(node->lowChild);
            }
        }
    }

    // -- Searching ----

    float distanceToQuad(const Quad* n) const {
        float dx = 0.0f, dy = 0.0f;
        if (n->xmin > qx_) {
            dx = qx_ - n->xmin;
        } else if (qx_ > n->xmax) {
            dx = qx_ - n->xmax;
        }
        if (n->ymin > qy_) {
            dy = qy_ - n->ymin;
        } else if (qy_ > n->ymax) {
            dy = qy_ - n->ymax;
        }
        return dx * dx + dy * dy;
    }

    void measureLeaf(const Quad* leaf) {
        for (const qel::QuadtreeObject* o : leaf->objects) {
            const float dx = qx_ - o->point.x, dy = qy_ - o->point.y;
            const float distance = dx * dx + dy * dy;
            if (distance < best_) {
                best_ = distance;
                bestObject_ = o;
            }
        }
    }

    void sortQueue() {
        std::sort(queue_.begin(), queue_.end(), [](const Entry& a, const Entry& b) {
            if (a.first != b.first) {
                return a.first < b.first;
            }
            return static_cast<Node*>(a.second)->number < static_cast<Node*>(b.second)->number;
        });
    }

    void startAtLeaf() {
        Quad* node = locate(root_, qx_, qy_);
        measureLeaf(node);
        for (; node != root_; node = node->parent) {
            Quad* parent = node->parent;
            Quad* sibling = parent->lowChild == node ? parent->highChild : parent->lowChild;
            const float distance = distanceToQuad(sibling);
            if (best_ > distance) {
                queue_.emplace_back(distance, sibling);
            }
        }
        if (bestObject_ != nullptr && queue_.empty()) {
            return;
        }
        sortQueue();
        traverse();
    }

    void traverse() {
        while (!queue_.empty()) {
            Quad* node = queue_.front().second;
            queue_.pop_front();
            if (node->splitType == Quad::leaf) {
                measureLeaf(node);
                continue;
            }
            while (!queue_.empty() && queue_.back().first > best_) {
                queue_.pop_back();
            }
            for (Quad* child : {node->lowChild, node->highChild}) {
                const float distance = distanceToQuad(child);
                if (best_ > distance) {
                    queue_.emplace_back(distance, child);
                }
            }
            sortQueue();
        }
    }

    int maxDepth_;
    int capacity_;
    int maxDepthReached_ = 0;
    std::deque<qel::QuadtreeObject> objects_;
    std::deque<Node> nodes_;
    std::vector<const Node*> preorder_;
    Quad* root_ = nullptr;
    float qx_ = 0.0f, qy_ = 0.0f, best_ = 0.0f;
    const qel::QuadtreeObject* bestObject_ = nullptr;
    std::deque<Entry> queue_;
};

} // namespace qel_test

#endif
