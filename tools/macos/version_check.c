// Stands in for the function behind @available in the compiler's runtime library, which only a Mac has. Linked, never
// called.
int __isPlatformVersionAtLeast(unsigned platform, unsigned major, unsigned minor, unsigned patch) {
  return platform && major && minor && patch;
}
