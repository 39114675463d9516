// Nothing: the precompiled header of the tests needs a source to belong to.
