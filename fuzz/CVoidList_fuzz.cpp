// Runs a CVoidList through a random sequence of operations and checks every
// result, the count and the cursor against a model kept in a std::vector.
#include <basicutils/containers/CVoidList.h>

#include <cstdint>
#include <cstdlib>
#include <vector>

using basicutils::CVoidList;

namespace {

int gSlots[9];
void* Ptr(int id) {
    return id ? &gSlots[id] : nullptr;
}

#define CHECK(c) \
    if (!(c)) std::abort()

// The model: elements by id (1..8), cursor index (-1 for none), position.
struct Model {
    std::vector<int> items;
    int cur = -1;
    int pos = 0;

    int Size() const { return static_cast<int>(items.size()); }
    int At(int i) const { return i >= 0 && i < Size() ? items[i] : 0; }
    int Current() const { return cur < 0 ? 0 : items[cur]; }
    int Find(int id) const {
        for (int i = 0; i < Size(); ++i)
            if (items[i] == id) return i;
        return -1;
    }
    int Head() {
        cur = Size() ? 0 : -1;
        pos = Size() ? 1 : 0;
        return Current();
    }
    int Tail() {
        cur = Size() - 1;
        pos = Size();
        return Current();
    }
    int Next() {
        if (cur < 0 || cur == Size() - 1) {
            cur = -1;
            pos = 0;
            return 0;
        }
        ++cur;
        ++pos;
        return Current();
    }
    int Prev() {
        if (cur < 0) {
            pos = 0;
            return 0;
        }
        if (cur == 0) {
            pos = 1;
            return 0;
        }
        --cur;
        --pos;
        return Current();
    }
    int GetAt(int p) {
        if (p < 1 || p > Size()) return 0;
        if (pos < 1 || pos > Size()) Head();
        while (pos < p && cur >= 0) Next();
        while (pos > p && cur >= 0 && Prev()) {
        }
        return pos == p ? Current() : 0;
    }
    int Insert(int index, int id) {
        items.insert(items.begin() + index, id);
        cur = index;
        return index;
    }
    void Remove(int index) {
        items.erase(items.begin() + index);
        cur = -1;
        pos = 0;
    }
};

void Same(CVoidList& list, Model& m) {
    CHECK(list.GetCount() == m.Size());
    CHECK(list.GetPosition() == m.pos);
    CHECK(list.GetCurrent() == Ptr(m.Current()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    CVoidList list;
    Model m;
    for (size_t i = 0; i + 1 < size; i += 2) {
        int op = data[i] % 24;
        int arg = data[i + 1] % 9;  // element id; 0 is null
        int p = static_cast<int>(data[i + 1]) - 2;
        void* e = Ptr(arg);
        switch (op) {
            case 0:
                if (!arg) {
                    CHECK(list.AddList(e) == 0);
                } else {
                    m.Insert(m.Size(), arg);
                    m.pos = m.Size();
                    CHECK(list.AddList(e) == m.Size());
                }
                break;
            case 1:
                if (arg) m.Insert(0, arg), m.pos = 1;
                CHECK(list.AddListToHead(e) == (arg ? 1 : 0));
                break;
            case 2:
            case 3: {
                int expect;
                if (!arg) {
                    expect = 0;
                } else if (m.cur < 0) {
                    if (m.Size()) {
                        expect = -1;
                    } else {
                        m.Insert(0, arg);
                        expect = m.pos = 1;
                    }
                } else if (op == 2) {
                    m.Insert(m.cur + 1, arg);
                    expect = ++m.pos;
                } else {
                    m.Insert(m.cur, arg);
                    expect = m.pos;
                }
                int got = op == 2 ? list.AddListAfterCurrent(e) : list.AddListBeforeCurrent(e);
                CHECK(got == expect);
                break;
            }
            case 4:
                CHECK(list.GetHead() == Ptr(m.Head()));
                break;
            case 5:
                CHECK(list.GetTail() == Ptr(m.Tail()));
                break;
            case 6:
                CHECK(list.GetAt(p) == Ptr(m.GetAt(p)));
                break;
            case 7:
                CHECK(list.GetCurrent() == Ptr(m.Current()));
                break;
            case 8:
                CHECK(list.GetNext() == Ptr(m.Next()));
                break;
            case 9:
                CHECK(list.GetPrev() == Ptr(m.Prev()));
                break;
            case 10: {
                int at = m.Find(arg);
                int expect = 0;
                if (at < 0 || at == m.Size() - 1) {
                    m.cur = -1;
                    m.pos = 0;
                } else {
                    m.cur = at + 1;
                    m.pos = at + 2;
                    expect = m.Current();
                }
                CHECK(list.GetNext(e) == Ptr(expect));
                break;
            }
            case 11: {
                int at = m.Find(arg);
                int expect = 0;
                if (at < 0) {
                    m.pos = 0;
                } else if (at == 0) {
                    m.cur = 0;
                    m.pos = 1;
                } else {
                    m.cur = at - 1;
                    m.pos = at;
                    expect = m.Current();
                }
                CHECK(list.GetPrev(e) == Ptr(expect));
                break;
            }
            case 12:
                CHECK(list.ViewHead() == Ptr(m.At(0)));
                break;
            case 13:
                CHECK(list.ViewTail() == Ptr(m.At(m.Size() - 1)));
                break;
            case 14:
            case 15: {
                int step = op == 14 ? 1 : -1;
                int expect = m.cur < 0 ? 0 : m.At(m.cur + step);
                if (!expect) m.pos = 0;
                CHECK((op == 14 ? list.ViewNext() : list.ViewPrev()) == Ptr(expect));
                break;
            }
            case 16:
            case 17: {
                int at = m.Find(arg);
                int step = op == 16 ? 1 : -1;
                int expect = at < 0 ? 0 : m.At(at + step);
                CHECK((op == 16 ? list.ViewNext(e) : list.ViewPrev(e)) == Ptr(expect));
                break;
            }
            case 18: {
                int at = m.Find(arg);
                if (at >= 0) m.cur = at, m.pos = at + 1;
                CHECK(list.GetPosition(e) == at + 1);
                break;
            }
            case 19: {
                int expect = -1;
                if (m.cur >= 0) m.Remove(m.cur), expect = m.Size();
                CHECK(list.DeleteList() == expect);
                break;
            }
            case 20: {
                int at = arg ? m.Find(arg) : -1;
                int expect = -1;
                if (at >= 0) m.Remove(at), expect = m.Size();
                CHECK(list.DeleteList(e) == expect);
                break;
            }
            case 21:
                CHECK(list.ClearList() == 0);
                m = Model();
                break;
            case 22: {
                CVoidList target;
                target.AddList(Ptr(1));
                CHECK(list.CopyTo(&target) == 0);
                m.cur = -1;
                m.pos = 0;
                CHECK(target.GetCount() == m.Size());
                int k = 0;
                for (void* x = target.GetHead(); x; x = target.GetNext())
                    CHECK(x == Ptr(m.At(k++)));
                CHECK(k == m.Size());
                break;
            }
            case 23: {
                CVoidList copy(list);
                Same(copy, m);
                copy.ClearList();
                break;
            }
        }
        Same(list, m);
    }
    // A final walk must see exactly the model's elements, in order.
    int k = 0;
    for (void* x = list.GetHead(); x; x = list.GetNext()) CHECK(x == Ptr(m.At(k++)));
    CHECK(k == m.Size());
    return 0;
}
