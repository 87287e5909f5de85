namespace { [[maybe_unused]] int unusedStub; }
