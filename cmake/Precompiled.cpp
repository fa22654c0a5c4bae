// Empty: a target that only precompiles headers needs one source.
