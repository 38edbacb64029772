#include "linux/applications/Interpreter.h"
#include "tests/linux/RecordedTree.h"

#include <gtest/gtest.h>

namespace vorli::linuxhost {
namespace {

TEST(InterpreterTest, isRecognisedByItsWholeName) {
  for (const char* program :
       {"/usr/bin/python3.11", "/bin/sh", "/usr/bin/bash", "/usr/bin/perl5.36",
        "/usr/lib/electron28/electron", "/usr/lib/jvm/java-17-openjdk-amd64/bin/java", "/usr/bin/gjs-console",
        "/usr/bin/wine64-preloader", "nodejs", "/usr/bin/mono-sgen"}) {
    EXPECT_TRUE(isInterpreter(program)) << program;
  }
  for (const char* program :
       {"/opt/rubymine/bin/rubymine", "/opt/ElectronMail/electron-mail", "/usr/bin/shotwell",
        "/usr/bin/monodevelop", "/opt/nodepad/nodepad", "/usr/bin/pythonic", "", "/"}) {
    EXPECT_FALSE(isInterpreter(program)) << program;
  }
}

TEST(InterpreterTest, everyShellIsAnInterpreterButNotTheReverse) {
  for (const char* program : {"/bin/sh", "/usr/bin/bash", "/usr/bin/dash", "/usr/bin/zsh5.9"}) {
    EXPECT_TRUE(isShell(program)) << program;
    EXPECT_TRUE(isInterpreter(program)) << program;
  }
  for (const char* program : {"/usr/bin/python3.11", "/usr/bin/node", "/usr/bin/shotwell", ""}) {
    EXPECT_FALSE(isShell(program)) << program;
  }
}

TEST(InterpreterTest, theScriptIsTheFirstWordThatIsNotAnOption) {
  const RecordedTree tree;
  tree.write("opt/tool.py", "");
  const auto tool = tree.path("opt/tool.py").string();
  tree.write("proc/10/cmdline", std::string("python3\0-u\0", 11) + tool + '\0' + "file.txt");
  tree.write("proc/11/cmdline", std::string("python3\0", 8));
  tree.write("proc/12/cmdline", std::string("sh\0-c\0exec tool\0", 16));
  EXPECT_EQ(scriptOf(10, tree.root()), tool);
  EXPECT_EQ(scriptOf(11, tree.root()), "");
  EXPECT_EQ(scriptOf(12, tree.root()), "");
  EXPECT_EQ(scriptOf(13, tree.root()), "");
}

}  // namespace
}  // namespace vorli::linuxhost
