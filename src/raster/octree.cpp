// Octree quantisation of true colour to at most 256 colours, in one pass.
//
// Each level of the tree splits on one bit of red, green and blue, from the
// highest bit down; a node at depth 8 is one exact colour.  When more than
// 256 leaves exist, the newest inner node of the deepest level absorbs its
// children.  All nodes come from one pool made at the start: the tree never
// holds more than about 2,600 nodes, since every inner node lies on the
// path of some of the at most 257 leaves.
#include <cstdlib>
#include <cstring>

#include "raster/image_out.h"

namespace raster {

namespace {

enum { POOL = 4096, DEPTH = 8, MAXLEAVES = 256, NONE = -1 };

struct Node {
    uint32_t count;
    uint64_t r, g, b;
    int level;
    int leaf;
    int index;  // palette index of a leaf
    int child[8];
    int next;  // next node of the same level in the reducible list, or free list
};

}  // namespace

struct Octree {
    Node nodes[POOL];
    int freelist;
    int root;
    int leaves;
    int reducible[DEPTH];  // newest inner node of each level first
};

namespace {

int node_new(Octree *t, int level) {
    int k = t->freelist;
    if (k == NONE) return NONE;
    t->freelist = t->nodes[k].next;
    Node &n = t->nodes[k];
    std::memset(&n, 0, sizeof n);
    for (int &c : n.child) c = NONE;
    n.level = level;
    n.next = NONE;
    if (level == DEPTH) {
        n.leaf = 1;
        ++t->leaves;
    } else {
        n.next = t->reducible[level];
        t->reducible[level] = k;
    }
    return k;
}

void node_release(Octree *t, int k) {
    t->nodes[k].next = t->freelist;
    t->freelist = k;
}

int child_index(const unsigned char *rgb, int level) {
    int mask = 0x80 >> level;
    return ((rgb[0] & mask) ? 4 : 0) | ((rgb[1] & mask) ? 2 : 0) | ((rgb[2] & mask) ? 1 : 0);
}

void reduce(Octree *t) {
    int level = DEPTH - 1;
    while (level > 0 && t->reducible[level] == NONE) --level;
    int k = t->reducible[level];
    if (k == NONE) return;
    Node &n = t->nodes[k];
    t->reducible[level] = n.next;
    n.next = NONE;
    int children = 0;
    for (int &c : n.child) {
        if (c == NONE) continue;
        Node &ch = t->nodes[c];
        n.count += ch.count;
        n.r += ch.r;
        n.g += ch.g;
        n.b += ch.b;
        node_release(t, c);
        c = NONE;
        ++children;
    }
    n.leaf = 1;
    t->leaves += 1 - children;
}

int number_leaves(Octree *t, int k, unsigned char *pal, int next) {
    Node &n = t->nodes[k];
    if (n.leaf) {
        n.index = next;
        if (n.count > 0 && next < 256) {
            pal[3 * next] = (unsigned char)(n.r / n.count);
            pal[3 * next + 1] = (unsigned char)(n.g / n.count);
            pal[3 * next + 2] = (unsigned char)(n.b / n.count);
        }
        return next + 1;
    }
    for (int c : n.child)
        if (c != NONE) next = number_leaves(t, c, pal, next);
    return next;
}

}  // namespace

Octree *octree_new() {
    Octree *t = static_cast<Octree *>(std::malloc(sizeof(Octree)));
    if (!t) return nullptr;
    for (int i = 0; i < POOL; ++i) t->nodes[i].next = i + 1 < POOL ? i + 1 : NONE;
    t->freelist = 0;
    t->leaves = 0;
    for (int &r : t->reducible) r = NONE;
    t->root = node_new(t, 0);
    return t;
}

void octree_free(Octree *t) {
    std::free(t);
}

void octree_add(Octree *t, const unsigned char *rgb, int n) {
    for (int i = 0; i < n; ++i, rgb += 3) {
        int k = t->root;
        while (!t->nodes[k].leaf) {
            int level = t->nodes[k].level;
            int ci = child_index(rgb, level);
            int c = t->nodes[k].child[ci];
            if (c == NONE) {
                c = node_new(t, level + 1);
                if (c == NONE) break;  // cannot happen: the pool outgrows the tree
                t->nodes[k].child[ci] = c;
            }
            k = c;
        }
        Node &leaf = t->nodes[k];
        leaf.count++;
        leaf.r += rgb[0];
        leaf.g += rgb[1];
        leaf.b += rgb[2];
        while (t->leaves > MAXLEAVES) reduce(t);
    }
}

int octree_palette(Octree *t, unsigned char *pal) {
    std::memset(pal, 0, 768);
    return number_leaves(t, t->root, pal, 0);
}

void octree_map(const Octree *t, const unsigned char *rgb, int n, unsigned char *idx) {
    for (int i = 0; i < n; ++i, rgb += 3) {
        int k = t->root;
        while (!t->nodes[k].leaf) {
            int c = t->nodes[k].child[child_index(rgb, t->nodes[k].level)];
            if (c == NONE) break;
            k = c;
        }
        int v = t->nodes[k].index;
        idx[i] = (unsigned char)(v > 255 ? 255 : v);
    }
}

}  // namespace raster
