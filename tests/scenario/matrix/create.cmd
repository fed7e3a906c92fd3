mat
input a
input a r=2 c=2
1 2
3
inputch name r=1 c=6 -null
abc
input3dc z r=1 c=1 t=2
1 0.5
2 -0.5
input
inputi k c=3
1,,2
series s x=1,0
series s x=0,1 inc=0.3
to_vector a
get_dim z n
to_int name
zero none
ident e r=3
to_int e
ll
filein short.txt
ll v
q
