db
ls
seti .#nodes v=8
input xyz r=2 c=3 /* a comment
1 2 &
3
4,5,6
setch name s='two words' -null
ll -f
ls c=2
memory
save kept
clear
ll
seti new v=1
readdb kept
ll xyz new
mv xyz .xyz
rm new none name
rm* abc
rm* .#*
mv .xyz
dir -f
savequit
