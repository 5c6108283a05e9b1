#include <orv/scene/node.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <thread>

#include <orv/core/thread.h>
#include <orv/geometry/primitives/mesh_box.h>

#include "scene/node_fixture.h"
#include "support/log_capture.h"
#include "support/vtable_slot.h"

namespace orv {
namespace {

using test::Events;
using test::NodeTree;
using test::Recorder;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

// ---- the table of virtual operations ----------------------------------------------------------

TEST(Node, VirtualOperationsStandInTheirOrder) {
  using test::vtable_slot;
  // The destructor takes the places 0 and 1.
  EXPECT_EQ(vtable_slot(&Node::init), 2u);
  EXPECT_EQ(vtable_slot(&Node::cleanup), 3u);
  EXPECT_EQ(vtable_slot(&Node::update), 4u);
  EXPECT_EQ(vtable_slot(&Node::build), 5u);
  EXPECT_EQ(vtable_slot(&Node::render), 6u);
  EXPECT_EQ(vtable_slot(&Node::_init), 7u);
  EXPECT_EQ(vtable_slot(&Node::_cleanup), 8u);
  EXPECT_EQ(vtable_slot(&Node::_update), 9u);
  EXPECT_EQ(vtable_slot(&Node::_build), 10u);
  EXPECT_EQ(vtable_slot(&Node::_render), 11u);
  EXPECT_EQ(vtable_slot(&Node::kill), 12u);
  EXPECT_EQ(vtable_slot(&Node::_kill), 13u);
  EXPECT_EQ(vtable_slot(&Node::set_name), 14u);
  EXPECT_EQ(vtable_slot(&Node::get_renderer_id), 15u);
  EXPECT_EQ(vtable_slot(&Node::set_renderer_id), 16u);
  EXPECT_EQ(vtable_slot(&Node::set_render_state), 17u);
}

TEST(Node, OtherOperationsAreNotVirtual) {
  using test::NOT_VIRTUAL;
  using test::vtable_slot;
  EXPECT_EQ(vtable_slot(&Node::release), NOT_VIRTUAL);
  EXPECT_EQ(vtable_slot(&Node::_release), NOT_VIRTUAL);
  EXPECT_EQ(vtable_slot(&Node::add_child), NOT_VIRTUAL);
  EXPECT_EQ(vtable_slot(&Node::get_name), NOT_VIRTUAL);
}

TEST(Node, DestructorIsTheFirstVirtualOperation) {
  struct Probe : Node {
    explicit Probe(bool* gone_flag) : gone(gone_flag) {}
    ~Probe() override { *gone = true; }
    bool* gone;
  };
  bool gone = false;
  Node* node = new Probe(&gone);
  // Entry 1 of the table destroys and frees.
  const std::uintptr_t* table = *reinterpret_cast<std::uintptr_t**>(node);
  reinterpret_cast<void (*)(Node*)>(table[1])(node);
  EXPECT_TRUE(gone);
}

// ---- identity ---------------------------------------------------------------------------------

TEST(Node, DefaultNameIsNodeAndTheIdentifier) {
  Node first;
  Node second;
  EXPECT_EQ(first.get_name(), "node_" + std::to_string(first.get_id()));
  EXPECT_EQ(second.get_name(), "node_" + std::to_string(second.get_id()));
  EXPECT_NE(first.get_id(), second.get_id());
  EXPECT_STRNE(first.get_name(), second.get_name());
  EXPECT_EQ(first.getid(), first.get_id());
}

TEST(Node, SetNameIgnoresNull) {
  Node node;
  node.set_name("lamp");
  node.set_name(nullptr);
  EXPECT_STREQ(node.get_name(), "lamp");
  node.set_name("");
  EXPECT_STREQ(node.get_name(), "");
  node.set_name("own name");
  node.set_name(node.get_name());
  EXPECT_STREQ(node.get_name(), "own name");
}

TEST(Node, DefaultsAreEmpty) {
  Node node;
  EXPECT_EQ(node.get_type(), NODE_TYPE_NODE);
  EXPECT_EQ(node.get_ref(), 0);
  EXPECT_EQ(node.get_parent(), nullptr);
  EXPECT_EQ(node.get_num_children(), 0u);
  EXPECT_EQ(node.get_layer(), 0);
  EXPECT_EQ(node.get_renderer_id(), 0);
  EXPECT_EQ(node.get_user_data_ptr(), nullptr);
  EXPECT_TRUE(node.get_render_state());
}

TEST(Node, HoldsWhatHostAndRendererStore) {
  Node node;
  int data = 0;
  node.set_user_data_ptr(&data);
  node.set_layer(-7);
  node.set_renderer_id(42);
  EXPECT_EQ(node.get_user_data_ptr(), &data);
  EXPECT_EQ(node.get_layer(), -7);
  EXPECT_EQ(node.get_renderer_id(), 42);
}

TEST_F(NodeTree, TypeIsTheLastPushedAndAllAreRemembered) {
  a->set_type(NODE_TYPE_OBJECT);
  a->set_type(NODE_TYPE_MESH);
  EXPECT_EQ(a->get_type(), NODE_TYPE_MESH);
  EXPECT_TRUE(a->is_type_of(NODE_TYPE_NODE));
  EXPECT_TRUE(a->is_type_of(NODE_TYPE_OBJECT));
  EXPECT_FALSE(a->is_type_of(NODE_TYPE_MESH_BOX));
  a->set_type(NODE_TYPE_OBJECT);
  EXPECT_EQ(a->get_type(), NODE_TYPE_OBJECT);
}

TEST(Node, BoxMeshHasTheTypesOfAllItsClasses) {
  MeshBox* box = new MeshBox;
  EXPECT_EQ(box->get_type(), 16);
  EXPECT_TRUE(box->is_type_of(static_cast<NODE_TYPE>(0)));
  EXPECT_TRUE(box->is_type_of(static_cast<NODE_TYPE>(5)));
  EXPECT_TRUE(box->is_type_of(static_cast<NODE_TYPE>(6)));
  EXPECT_TRUE(box->is_type_of(static_cast<NODE_TYPE>(16)));
  EXPECT_FALSE(box->is_type_of(static_cast<NODE_TYPE>(7)));
  box->kill(nullptr, nullptr);
}

TEST(Node, TypeValuesAreFixed) {
  EXPECT_EQ(NODE_TYPE_MODEL, 22);
  EXPECT_EQ(NODE_TYPE_SKYBOX, 30);
  EXPECT_EQ(NODE_TYPE_PARTICLE_SYSTEM, 32);
  EXPECT_EQ(NODE_TYPE_GPU_BUFFER, 46);
}

// ---- walks ------------------------------------------------------------------------------------

TEST_F(NodeTree, InitRunsFromTheTop) {
  a->result = false;
  EXPECT_TRUE(root->init(renderer, nullptr)) << "results of the workers aren't looked at";
  EXPECT_THAT(events, ElementsAre("init root", "init a", "init c", "init b"));
  EXPECT_EQ(c->last_renderer, renderer);
}

TEST_F(NodeTree, CleanupRunsFromTheBottomAndGivesTheOwnResult) {
  a->result = false;
  EXPECT_TRUE(root->cleanup(renderer, nullptr));
  EXPECT_THAT(events, ElementsAre("cleanup c", "cleanup a", "cleanup b", "cleanup root"));
  root->result = false;
  EXPECT_FALSE(root->cleanup(renderer, nullptr));
}

TEST_F(NodeTree, UpdateAndBuildRunFromTheTop) {
  root->result = a->result = false;
  EXPECT_TRUE(root->update(0.5f, nullptr));
  EXPECT_THAT(events, ElementsAre("update root", "update a", "update c", "update b"));
  EXPECT_EQ(c->last_dt, 0.5f);
  events.clear();
  EXPECT_TRUE(root->build(nullptr));
  EXPECT_THAT(events, ElementsAre("build root", "build a", "build c", "build b"));
  root->result = true;
}

TEST_F(NodeTree, WalkTakesTheChildrenOfTheNamedNodeAndTheWorkOfThisOne) {
  b->init(renderer, root);
  EXPECT_THAT(events, ElementsAre("init b", "init a", "init c", "init b"));
  events.clear();
  c->update(1, a);
  EXPECT_THAT(events, ElementsAre("update c", "update c"));
  events.clear();
  b->build(a);
  EXPECT_THAT(events, ElementsAre("build b", "build c"));
  events.clear();
  b->cleanup(renderer, a);
  EXPECT_THAT(events, ElementsAre("cleanup c", "cleanup b"));
}

TEST_F(NodeTree, RenderDrawsThisNodeAlone) {
  root->render(renderer, nullptr);
  root->render(renderer, a);
  EXPECT_THAT(events, ElementsAre("render root", "render root"));
}

TEST_F(NodeTree, RenderWithStateOffDrawsNothingAndUpdateGoesOn) {
  root->set_render_state(false, nullptr);
  root->render(renderer, nullptr);
  EXPECT_THAT(events, IsEmpty());
  root->update(1, nullptr);
  EXPECT_EQ(events.size(), 4u);
}

TEST_F(NodeTree, RenderStateWithNullLeavesTheChildrenVisible) {
  root->set_render_state(false, nullptr);
  EXPECT_FALSE(root->get_render_state());
  EXPECT_TRUE(a->get_render_state());
  a->render(renderer, nullptr);
  EXPECT_THAT(events, ElementsAre("render a"));
}

TEST_F(NodeTree, RenderStateWithANodeReachesTheWholeSubtree) {
  root->set_render_state(false, root);
  for (Node* node : {root, a, b, c}) EXPECT_FALSE(node->get_render_state());
  b->set_render_state(true, a);
  EXPECT_TRUE(b->get_render_state());
  EXPECT_TRUE(c->get_render_state());
  EXPECT_FALSE(a->get_render_state());
}

TEST(Node, DefaultWorkersDoNothing) {
  Node node;
  EXPECT_TRUE(node._init(nullptr));
  EXPECT_TRUE(node._cleanup(nullptr));
  EXPECT_TRUE(node._update(1));
  EXPECT_TRUE(node._build());
  node._render(nullptr);
  EXPECT_TRUE(node.init(nullptr, nullptr));
}

TEST_F(NodeTree, WalkGoesOnWhenAChildTakesItselfOut) {
  class Leaver : public Node {
   public:
    bool _update(float) override { return get_parent()->remove_child(this) == 0; }
  };
  Leaver leaver;
  Node parent;
  Recorder last("last", &events);
  parent.add_child(&leaver);
  parent.add_child(&last);
  parent.update(1, nullptr);
  EXPECT_THAT(events, ElementsAre("update last"));
  EXPECT_EQ(parent.get_num_children(), 1u);
}

TEST_F(NodeTree, WalkEndsWhenAChildAddsAnotherEachTime) {
  class Grower : public Node {
   public:
    bool _update(float) override { return get_parent()->add_child(new Grower); }
  };
  Node* parent = new Node;
  parent->add_child(new Grower);
  parent->update(1, nullptr);
  EXPECT_EQ(parent->get_num_children(), 2u);
  parent->update(1, nullptr);
  EXPECT_EQ(parent->get_num_children(), 4u);
  parent->kill(nullptr, nullptr);
}

// ---- children ---------------------------------------------------------------------------------

TEST_F(NodeTree, AddChildCountsAppendsAndSetsTheParent) {
  EXPECT_EQ(root->get_num_children(), 2u);
  EXPECT_EQ(root->get_child(0), a);
  EXPECT_EQ(root->get_child(1), b);
  EXPECT_EQ(a->get_ref(), 1);
  EXPECT_EQ(a->get_parent(), root);
}

TEST_F(NodeTree, AddChildIgnoresNull) {
  EXPECT_FALSE(root->add_child(nullptr));
  EXPECT_EQ(root->get_num_children(), 2u);
}

TEST_F(NodeTree, GetChildPastTheEndIsNull) {
  EXPECT_EQ(root->get_child(2), nullptr);
  EXPECT_EQ(root->get_child(0xFFFFFFFFu), nullptr);
}

TEST_F(NodeTree, TheLastOfSeveralParentsIsTheParent) {
  EXPECT_TRUE(b->add_child(c));
  EXPECT_EQ(c->get_parent(), b);
  EXPECT_EQ(c->get_ref(), 2);
  EXPECT_EQ(a->get_child(0), c);
  EXPECT_EQ(b->get_child(0), c);
}

TEST_F(NodeTree, RingsAreRefused) {
  test::LogCapture log;
  EXPECT_FALSE(a->add_child(a));
  EXPECT_FALSE(c->add_child(root));
  EXPECT_EQ(c->get_num_children(), 0u);
  EXPECT_EQ(root->get_ref(), 0);
  EXPECT_EQ(root->get_parent(), nullptr);
  root->set_parent(c);
  EXPECT_EQ(root->get_parent(), nullptr);
  root->set_parent(root);
  EXPECT_EQ(root->get_parent(), nullptr);
  EXPECT_EQ(log.count("refused"), 4);
}

TEST_F(NodeTree, RingsByParentsSetByHandAreRefused) {
  test::LogCapture log;
  Node x;
  Node y;
  x.set_parent(&y);
  EXPECT_FALSE(x.add_child(&y));
  y.set_parent(&x);
  EXPECT_EQ(y.get_parent(), nullptr);
  EXPECT_TRUE(y.add_child(&x));
}

TEST_F(NodeTree, RemoveChildTakesOneOffAndDestroysNothing) {
  EXPECT_EQ(root->remove_child(b), 0);
  EXPECT_EQ(b->get_parent(), nullptr);
  EXPECT_EQ(b->get_ref(), 0);
  EXPECT_EQ(root->get_num_children(), 1u);
  EXPECT_THAT(events, IsEmpty());
  a->add_ref();
  EXPECT_EQ(root->remove_child(a), 1);
}

TEST_F(NodeTree, RemoveChildOfAGrandchildClearsItsParent) {
  EXPECT_EQ(root->remove_child(c), 0);
  EXPECT_EQ(c->get_parent(), nullptr);
  EXPECT_EQ(a->get_num_children(), 0u);
  EXPECT_EQ(a->get_parent(), root);
}

TEST_F(NodeTree, RemoveChildOfNullOrAStrangerIsMinusOne) {
  Node stranger;
  EXPECT_EQ(root->remove_child(nullptr), -1);
  EXPECT_EQ(root->remove_child(&stranger), -1);
  EXPECT_EQ(root->remove_child(root), -1);
}

TEST_F(NodeTree, ClearChildrenListKeepsCountsAndParents) {
  root->clear_children_list();
  EXPECT_EQ(root->get_num_children(), 0u);
  EXPECT_EQ(a->get_ref(), 1);
  EXPECT_EQ(a->get_parent(), root);
}

TEST_F(NodeTree, SetParentDoesNotEnterTheList) {
  Node node;
  node.set_parent(b);
  EXPECT_EQ(node.get_parent(), b);
  EXPECT_EQ(b->get_num_children(), 0u);
  EXPECT_EQ(node.get_ref(), 0);
  node.set_parent(nullptr);
  EXPECT_EQ(node.get_parent(), nullptr);
}

TEST_F(NodeTree, FindChildWithNullSearchesOneLevel) {
  EXPECT_EQ(root->find_child("b", nullptr), b);
  EXPECT_EQ(root->find_child("c", nullptr), nullptr);
  EXPECT_EQ(root->find_child(b->get_id(), nullptr), b);
  EXPECT_EQ(root->find_child(c->get_id(), nullptr), nullptr);
}

TEST_F(NodeTree, FindChildWithTheNodeItselfSearchesBelow) {
  EXPECT_EQ(root->find_child("c", root), c);
  EXPECT_EQ(root->find_child(c->get_id(), root), c);
  EXPECT_EQ(root->find_child("none", root), nullptr);
  EXPECT_EQ(root->find_child(-1, root), nullptr);
}

TEST_F(NodeTree, FindChildWithAnotherNodeSearchesOwnLevelThenBelowThatNode) {
  EXPECT_EQ(b->find_child("c", root), c);
  EXPECT_EQ(b->find_child("a", root), nullptr) << "the other node's own level isn't searched";
}

TEST_F(NodeTree, FindChildPrefersTheOwnLevelAndTheFirst) {
  c->set_name("same");
  b->set_name("same");
  EXPECT_EQ(root->find_child("same", root), b);
  a->set_name("same");
  EXPECT_EQ(root->find_child("same", root), a);
  a->set_name("a");
  b->set_name("b");
  c->set_name("c");
}

TEST_F(NodeTree, FindChildOfANullNameIsNull) {
  EXPECT_EQ(root->find_child(static_cast<const char*>(nullptr), root), nullptr);
  EXPECT_EQ(root->find_child("", root), nullptr);
}

// ---- thread -----------------------------------------------------------------------------------

TEST(Node, KnowsItsThread) {
  Node node;
  EXPECT_TRUE(node.check_thread());
  EXPECT_EQ(node.get_thread_ptr(), &node.get_thread());
  EXPECT_TRUE(node.get_thread() == Thread());
  bool elsewhere = true;
  bool after_update = false;
  std::thread([&] {
    elsewhere = node.check_thread();
    node.update_thread();
    after_update = node.check_thread();
  }).join();
  EXPECT_FALSE(elsewhere);
  EXPECT_TRUE(after_update);
  EXPECT_FALSE(node.check_thread());
}

}  // namespace
}  // namespace orv
