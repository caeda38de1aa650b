// The support library needs one source while no helper exists yet.
