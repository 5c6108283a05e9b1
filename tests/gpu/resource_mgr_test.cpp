#include <orv/gpu/resource.h>
#include <orv/gpu/resource_mgr.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/recording_renderer.h"
#include "support/vtable_slot.h"

namespace orv {
namespace {

using test::vtable_slot;

// Counts how many of its kind are alive.
class Counted : public Resource {
 public:
  explicit Counted(const char* name = "counted", int renderer_id = 0) {
    set_name(name);
    set_renderer_id(renderer_id);
    ++alive;
  }
  ~Counted() override { --alive; }
  static int alive;
};

int Counted::alive = 0;

class Manager : public ResourceMgr {
 public:
  using ResourceMgr::add_resource;
  using ResourceMgr::remove_resource;
};

class ResourceMgrTest : public testing::Test {
 protected:
  ResourceMgrTest() { Counted::alive = 0; }

  Manager manager;
  test::RecordingRenderer renderer;
  test::RecordingRenderer other;
};

TEST(ResourceMgr, VirtualOperationsStandInTheirOrder) {
  // Two slots hold the destructor.
  EXPECT_EQ(vtable_slot(&ResourceMgr::start), 2u);
  EXPECT_EQ(vtable_slot(&ResourceMgr::stop), 3u);
  EXPECT_EQ(vtable_slot(&ResourceMgr::release_resource), 4u);
  EXPECT_EQ(vtable_slot(&ResourceMgr::release_all_resources), 5u);
}

TEST_F(ResourceMgrTest, AddingNullIsRefused) {
  EXPECT_FALSE(manager.add_resource(nullptr));
  EXPECT_EQ(manager.get_num_resources(), 0u);
}

TEST_F(ResourceMgrTest, AddingTwiceLeavesOneEntryAndOneReference) {
  Counted resource;
  EXPECT_TRUE(manager.add_resource(&resource));
  EXPECT_TRUE(manager.add_resource(&resource));
  EXPECT_EQ(manager.get_num_resources(), 1u);
  EXPECT_EQ(resource.get_ref(), 1);
}

TEST_F(ResourceMgrTest, FindsByIdNameIndexAndPointer) {
  Counted a("a");
  Counted b("b");
  manager.add_resource(&a);
  manager.add_resource(&b);
  EXPECT_EQ(manager.get_resource(b.get_id()), &b);
  EXPECT_EQ(manager.get_resource("b"), &b);
  EXPECT_EQ(manager.get_resource_by_index(1), &b);
  EXPECT_TRUE(manager.has_resource(&a));
  EXPECT_TRUE(manager.has_resource(a.get_id()));
}

TEST_F(ResourceMgrTest, UnknownIdsNamesAndPointersAreNotFound) {
  Counted a("a");
  Counted stranger("stranger");
  manager.add_resource(&a);
  EXPECT_EQ(manager.get_resource(-1), nullptr);
  EXPECT_EQ(manager.get_resource("A"), nullptr);
  EXPECT_EQ(manager.get_resource(""), nullptr);
  EXPECT_EQ(manager.get_resource(static_cast<const char*>(nullptr)), nullptr);
  EXPECT_FALSE(manager.has_resource(&stranger));
  EXPECT_FALSE(manager.has_resource(stranger.get_id()));
  EXPECT_FALSE(manager.has_resource(static_cast<Resource*>(nullptr)));
}

TEST_F(ResourceMgrTest, IndexPastTheEndGivesNull) {
  Counted a("a");
  manager.add_resource(&a);
  EXPECT_EQ(manager.get_resource_by_index(1), nullptr);
  EXPECT_EQ(manager.get_resource_by_index(0xFFFFFFFFu), nullptr);
}

TEST_F(ResourceMgrTest, FirstAddedOfEqualNamesIsFound) {
  Counted second("x");  // made first, added second: the order of addition counts
  Counted first("x");
  manager.add_resource(&first);
  manager.add_resource(&second);
  EXPECT_EQ(manager.get_resource("x"), &first);
}

TEST_F(ResourceMgrTest, RenamedResourcesAreFoundUnderTheirPresentName) {
  Counted a("a");
  Counted b("b");
  manager.add_resource(&a);
  manager.add_resource(&b);
  EXPECT_EQ(manager.get_resource("b"), &b);
  a.set_name("b");
  EXPECT_EQ(manager.get_resource("b"), &a);
  EXPECT_EQ(manager.get_resource("a"), nullptr);
  b.set_name("a");
  EXPECT_EQ(manager.get_resource("a"), &b);
}

TEST_F(ResourceMgrTest, NamesAreComparedWhole) {
  const std::string base(300, 'n');
  Counted a((base + "a").c_str());
  Counted b((base + "b").c_str());
  manager.add_resource(&a);
  manager.add_resource(&b);
  EXPECT_EQ(manager.get_resource((base + "b").c_str()), &b);
}

TEST_F(ResourceMgrTest, ReleaseOfNullGivesZero) {
  EXPECT_EQ(manager.release_resource(nullptr, nullptr, nullptr), 0);
}

TEST_F(ResourceMgrTest, ReleaseDestroysTheLastReference) {
  auto* resource = new Counted;
  manager.add_resource(resource);
  EXPECT_EQ(manager.release_resource(nullptr, resource, nullptr), 0);
  EXPECT_EQ(Counted::alive, 0);
  EXPECT_EQ(manager.get_num_resources(), 0u);
}

TEST_F(ResourceMgrTest, EntryGoesThoughReferencesStay) {
  Counted resource("held");
  resource.add_ref();
  manager.add_resource(&resource);
  EXPECT_EQ(manager.release_resource(nullptr, &resource, nullptr), 1);
  EXPECT_EQ(manager.get_num_resources(), 0u);
  EXPECT_EQ(manager.get_resource("held"), nullptr);
  EXPECT_EQ(Counted::alive, 1);
}

TEST_F(ResourceMgrTest, ResourceOutsideTheListIsReleasedToo) {
  auto* resource = new Counted;
  EXPECT_EQ(manager.release_resource(&renderer, resource, nullptr), 0);
  EXPECT_EQ(Counted::alive, 0);
}

TEST_F(ResourceMgrTest, ForeignResourceOutsideTheListStays) {
  Counted resource("foreign", other.get_id());
  EXPECT_EQ(manager.release_resource(&renderer, &resource, nullptr), 0);
  EXPECT_EQ(Counted::alive, 1);
}

TEST_F(ResourceMgrTest, AnotherRendererCannotRelease) {
  auto* resource = new Counted("mine", renderer.get_id());
  resource->add_ref();
  manager.add_resource(resource);
  EXPECT_EQ(manager.release_resource(&other, resource, nullptr), 0);
  EXPECT_EQ(manager.get_num_resources(), 1u);
  EXPECT_EQ(resource->get_ref(), 2);
  EXPECT_EQ(manager.release_resource(&renderer, resource, nullptr), 1);
  EXPECT_EQ(manager.get_num_resources(), 0u);
  resource->release(nullptr, nullptr);
  EXPECT_EQ(Counted::alive, 0);
}

TEST_F(ResourceMgrTest, NullRendererReleasesTheResourceOfAnyRenderer) {
  auto* resource = new Counted("mine", renderer.get_id());
  manager.add_resource(resource);
  manager.release_resource(nullptr, resource, nullptr);
  EXPECT_EQ(Counted::alive, 0);
  EXPECT_EQ(manager.get_num_resources(), 0u);
}

TEST_F(ResourceMgrTest, ReleaseAllOfAnEmptyListSucceeds) {
  EXPECT_TRUE(manager.release_all_resources(nullptr, nullptr));
  EXPECT_TRUE(manager.release_all_resources(&renderer, nullptr));
}

TEST_F(ResourceMgrTest, ForeignResourcesSurviveInOrder) {
  Counted foreign_1("1", other.get_id());
  Counted foreign_2("2", other.get_id());
  Counted foreign_3("3", other.get_id());
  manager.add_resource(new Counted("own", renderer.get_id()));
  manager.add_resource(&foreign_1);
  manager.add_resource(new Counted("never uploaded"));
  manager.add_resource(&foreign_2);
  manager.add_resource(&foreign_3);
  EXPECT_TRUE(manager.stop(&renderer));
  EXPECT_EQ(Counted::alive, 3);
  ASSERT_EQ(manager.get_num_resources(), 3u);
  EXPECT_EQ(manager.get_resource_by_index(0), &foreign_1);
  EXPECT_EQ(manager.get_resource_by_index(1), &foreign_2);
  EXPECT_EQ(manager.get_resource_by_index(2), &foreign_3);
  EXPECT_EQ(manager.get_resource("2"), &foreign_2);
  EXPECT_EQ(foreign_2.get_ref(), 1);
}

TEST_F(ResourceMgrTest, AllAreReleasedInTheOrderOfTheList) {
  class Noted : public Resource {
   public:
    Noted(std::vector<int>* order, int number) : order_(order), number_(number) {}
    ~Noted() override { order_->push_back(number_); }

   private:
    std::vector<int>* order_;
    int number_;
  };
  std::vector<int> order;
  Counted foreign("foreign", other.get_id());
  manager.add_resource(new Noted(&order, 1));
  manager.add_resource(&foreign);
  manager.add_resource(new Noted(&order, 2));
  manager.add_resource(new Noted(&order, 3));
  EXPECT_TRUE(manager.release_all_resources(&renderer, nullptr));
  EXPECT_EQ(order, (std::vector<int>{1, 2, 3}));
  EXPECT_EQ(manager.get_num_resources(), 1u);
  EXPECT_TRUE(manager.has_resource(&foreign));
  EXPECT_EQ(manager.get_resource("foreign"), &foreign);
}

TEST_F(ResourceMgrTest, ReleasedIdsAreForgotten) {
  auto* resource = new Counted("gone");
  const int id = resource->get_id();
  manager.add_resource(resource);
  EXPECT_TRUE(manager.release_all_resources(&renderer, nullptr));
  EXPECT_EQ(manager.get_resource(id), nullptr);
  EXPECT_EQ(manager.get_resource("gone"), nullptr);
  EXPECT_FALSE(manager.has_resource(id));
}

TEST_F(ResourceMgrTest, StopWithoutRendererReleasesAll) {
  manager.add_resource(new Counted("a", renderer.get_id()));
  manager.add_resource(new Counted("b", other.get_id()));
  EXPECT_TRUE(manager.stop(nullptr));
  EXPECT_EQ(Counted::alive, 0);
  EXPECT_EQ(manager.get_num_resources(), 0u);
}

TEST_F(ResourceMgrTest, StopWorksThroughTheVirtualRelease) {
  class Spy : public ResourceMgr {
   public:
    bool release_all_resources(Renderer*, Thread*) override {
      ++calls;
      return true;
    }
    int calls = 0;
  } spy;
  EXPECT_TRUE(spy.stop(nullptr));
  EXPECT_EQ(spy.calls, 1);
}

TEST_F(ResourceMgrTest, StartDoesNothing) {
  Counted resource;
  manager.add_resource(&resource);
  EXPECT_TRUE(manager.start(nullptr));
  EXPECT_EQ(manager.get_num_resources(), 1u);
}

TEST_F(ResourceMgrTest, RemoveOfNullIsRefused) {
  EXPECT_FALSE(manager.remove_resource(nullptr, nullptr));
}

TEST_F(ResourceMgrTest, RemoveReleasesTheResource) {
  auto* resource = new Counted;
  manager.add_resource(resource);
  EXPECT_TRUE(manager.remove_resource(&renderer, resource));
  EXPECT_EQ(Counted::alive, 0);
  EXPECT_EQ(manager.get_num_resources(), 0u);
}

TEST_F(ResourceMgrTest, RemoveOfAForeignResourceTakesTheEntryOnly) {
  Counted resource("foreign", other.get_id());
  manager.add_resource(&resource);
  EXPECT_TRUE(manager.remove_resource(&renderer, &resource));
  EXPECT_EQ(manager.get_num_resources(), 0u);
  EXPECT_EQ(resource.get_ref(), 1);
}

TEST_F(ResourceMgrTest, DestructorReleasesNothing) {
  Counted resource;
  {
    Manager local;
    local.add_resource(&resource);
  }
  EXPECT_EQ(Counted::alive, 1);
  EXPECT_EQ(resource.get_ref(), 1);
}

TEST_F(ResourceMgrTest, ReleaseMayReleaseAnotherEntryFromItsDestructor) {
  class Parent : public Resource {
   public:
    Parent(Manager* owner, Resource* partner) : owner_(owner), partner_(partner) {}
    ~Parent() override { owner_->release_resource(nullptr, partner_, nullptr); }

   private:
    Manager* owner_;
    Resource* partner_;
  };
  auto* partner = new Counted;
  manager.add_resource(new Parent(&manager, partner));
  manager.add_resource(partner);
  EXPECT_TRUE(manager.release_all_resources(nullptr, nullptr));
  EXPECT_EQ(Counted::alive, 0);
  EXPECT_EQ(manager.get_num_resources(), 0u);
}

}  // namespace
}  // namespace orv
