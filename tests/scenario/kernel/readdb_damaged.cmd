db
readdb cut
