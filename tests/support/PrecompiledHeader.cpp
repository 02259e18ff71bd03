// Holds no code: its program exists for the precompiled header that all tests share.
