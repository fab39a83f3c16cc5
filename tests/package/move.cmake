# Moves the tree FROM to TO, where nothing of an earlier run stays.
file(REMOVE_RECURSE ${TO})
file(RENAME ${FROM} ${TO})
