db

   /* only a comment
setr a v=2 /* and a comment
 seti b &
 v=3 &
   -f
setch cmd s=ll -null
~cmd
setch list s=a -null
ll ~list '' b
ll 'a'
Print a
ll abc&
def
seti word_longer_than_the_thirty_two_characters_of_a_command v=1
word_longer_than_the_thirty_two_characters_of_a_command
ls
q
