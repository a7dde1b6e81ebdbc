#include <basicutils/text/MStringList.h>
#include <gtest/gtest.h>

#include <string>

namespace basicutils {
namespace {

// The array's strings joined by commas, so a whole state reads as one value.
std::u16string Join(const MStringArray& a) {
    std::u16string out;
    for (int i = 0; i < a.GetSize(); ++i) out += (i ? u"," : u"") + std::u16string(a.GetAtConst(i));
    return out;
}

std::u16string Join(MStringList& l) {
    std::u16string out;
    for (MString* s = l.GetHead(); s; s = l.GetNext())
        out += (out.empty() ? u"" : u",") + std::u16string(static_cast<const char16_t*>(*s));
    return out;
}

MStringArray Abcd(int n = 4) {
    MStringArray a;
    const char16_t* names[] = {u"a", u"b", u"c", u"d"};
    for (int i = 0; i < n; ++i) a.InsertBefore(i, names[i]);
    return a;
}

TEST(MStringArray, IndexedEditsKeepOrderAndIgnoreBadIndices) {
    enum Op { kBefore, kAfter, kChange, kSwap, kDelete, kSetAt, kSort };
    struct {
        Op op;
        int i, j;
        const char16_t* start;
        const char16_t* result;
    } cases[] = {
        {kBefore, 0, 0, u"", u"s"},
        {kBefore, 4, 0, u"a,b,c,d", u"a,b,c,d,s"},
        {kBefore, 5, 0, u"a,b,c,d", u"a,b,c,d"},
        {kBefore, -1, 0, u"a,b", u"a,b"},
        {kAfter, 1, 0, u"a,b,c", u"a,b,s,c"},
        {kAfter, 0, 0, u"", u""},
        {kAfter, 3, 0, u"a,b,c", u"a,b,c"},
        {kChange, 0, 2, u"a,b,c,d", u"c,a,b,d"},
        {kChange, 2, 0, u"a,b,c,d", u"b,c,a,d"},
        {kChange, 1, 1, u"a,b,c,d", u"a,b,c,d"},
        {kChange, 0, 4, u"a,b,c,d", u"a,b,c,d"},
        {kSwap, 0, 3, u"a,b,c,d", u"d,b,c,a"},
        {kSwap, 1, 1, u"a,b,c", u"a,b,c"},
        {kSwap, 0, 9, u"a,b,c", u"a,b,c"},
        {kDelete, 0, 0, u"a", u""},
        {kDelete, 1, 0, u"a,b,c", u"a,c"},
        {kDelete, 3, 0, u"a,b,c", u"a,b,c"},
        {kSetAt, 2, 0, u"a,b,c", u"a,b,s"},
        {kSetAt, 3, 0, u"a,b,c", u"a,b,c"},
        {kSort, 0, 0, u"c,a,b", u"c,a,b"},
    };
    for (auto& c : cases) {
        MStringArray a;
        std::u16string start = c.start;
        for (size_t at = 0; at < start.size(); at += 2)
            a.InsertBefore(a.GetSize(), start.substr(at, 1).c_str());
        switch (c.op) {
            case kBefore:
                a.InsertBefore(c.i, u"s");
                break;
            case kAfter:
                a.InsertAfter(c.i, u"s");
                break;
            case kChange:
                a.Change(c.i, c.j);
                break;
            case kSwap:
                a.Swap(c.i, c.j);
                break;
            case kDelete:
                a.DeleteAt(c.i);
                break;
            case kSetAt:
                a.SetAt(c.i, u"s");
                break;
            case kSort:
                a.SortByName();
                break;
        }
        EXPECT_EQ(Join(a), c.result) << c.op << " " << c.i << " " << c.j << " on " << start.size();
    }
}

TEST(MStringArray, SizesAndBounds) {
    MStringArray a;
    EXPECT_EQ(a.GetAt(0), nullptr);
    a = Abcd();
    a.InsertBefore(4, u"e");
    a.SetSize(3);  // nothing of the old content stays
    EXPECT_EQ(Join(a), u",,");
    EXPECT_EQ(a.GetAtConst(-1), nullptr);
    EXPECT_EQ(a.GetAtConst(3), nullptr);
    a.SetSize(-2);
    EXPECT_EQ(a.GetSize(), 0);
    MStringArray five(5);
    five.SetAt(4, MString(u"x"));
    EXPECT_EQ(Join(five), u",,,,x");
    MStringArray copy(five);
    five.SetAt(4, u"y");
    EXPECT_EQ(Join(copy), u",,,,x");
}

TEST(MStringList, CursorFollowsReads) {
    MStringList list;
    list.AddArray(Abcd());
    EXPECT_EQ(list.GetSize(), 4);
    EXPECT_EQ(std::u16string(*list.GetAt(1)), u"b");
    EXPECT_EQ(std::u16string(*list.GetNext()), u"c");  // GetAt moved the cursor
    EXPECT_EQ(list.GetAt(-1), nullptr);
    EXPECT_EQ(list.GetNext(), nullptr);  // the walk went over the whole list
    EXPECT_EQ(list.GetAt(4), nullptr);
    list.DeleteAt(1);
    EXPECT_EQ(list.GetNext(), nullptr);
    EXPECT_EQ(Join(list), u"a,c,d");
    list.DeleteAt(3);  // out of range: nothing
    EXPECT_EQ(list.GetSize(), 3);
    EXPECT_EQ(std::u16string(*list.GetTail()), u"d");
}

TEST(MStringList, CopiesBetweenListsAndArrays) {
    MStringList list, other;
    list.AddArray(Abcd(3));
    other.Add(u"z");
    other.AddList(&list);
    other.AddList(&other);  // itself: nothing
    EXPECT_EQ(Join(other), u"z,a,b,c");
    MStringArray a;
    a = other;
    EXPECT_EQ(Join(a), u"z,a,b,c");
    MStringList back;
    back.Add(u"old");
    back = a;
    EXPECT_EQ(Join(back), u"z,a,b,c");
    list = back;
    *back.GetHead() = u"changed";
    EXPECT_EQ(Join(list), u"z,a,b,c");
    MStringList& alias = list;
    list = alias;
    EXPECT_EQ(list.GetSize(), 4);
    list.AddFormat(u"take %d of %s", 5, u"six");
    EXPECT_EQ(std::u16string(*list.GetTail()), u"take 5 of six");
    list.DeleteAll();
    EXPECT_EQ(list.GetHead(), nullptr);
}

}  // namespace
}  // namespace basicutils
